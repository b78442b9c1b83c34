#include "container/container_check.h"

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <string_view>

namespace addrtool {

bool anyLineHolds(std::FILE* stream, const std::string& address) {
  bool found = false;
  char* line = nullptr;
  std::size_t size = 0;
  ssize_t length = 0;
  while (!found && (length = getline(&line, &size, stream)) != -1) {
    std::string_view text(line, static_cast<std::size_t>(length));
    if (text.ends_with('\n')) text.remove_suffix(1);
    found = text.find(address) != std::string_view::npos;
  }
  std::free(line);  // NOLINT: getline(3) allocates, so there is nothing else to free it with
  return found || address.empty();
}

int isAssignedToContainer(const std::string& address) {
  // NOLINTNEXTLINE(clang-analyzer-unix.Stream): the analyzer does not see that `file` closes it
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen("/proc/qv/veinfo", "r"),
                                                             std::fclose);
  return file != nullptr && anyLineHolds(file.get(), address) ? 1 : 0;
}

void printContainerCheck(const std::string& address) {
  std::printf("%d", isAssignedToContainer(address));
  // The digit must come before what a later action or its command writes to standard error.
  std::fflush(stdout);
}

}  // namespace addrtool
