// Fuzzes the runtime configuration file. The input is the file. The reader opens it by a path to a
// file in memory.
#include "runtime/config_file.h"

#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <string>

#include "fuzzing.h"
#include "support/log_recorder.h"

namespace addrtool::fuzz {
namespace {

constexpr const char* whiteSpace = " \t\n\v\f\r";

// Writes the input to a file in memory and returns its path.
std::string pathOf(Octets file) {
  static const int descriptor = memfd_create("config", MFD_CLOEXEC);
  require(ftruncate(descriptor, 0) == 0 &&
              pwrite(descriptor, file.data(), file.size(), 0) == static_cast<ssize_t>(file.size()),
          "the file can be filled");
  return "/proc/self/fd/" + std::to_string(descriptor);
}

void checkTable(const RuntimeConfiguration& table, const std::string& file) {
  RuntimeConfiguration unsorted = table;
  unsorted.sorted = 0;
  require(table.sorted == 1 && table.count <= table.capacity, "a table that was read is sorted");
  for (std::uint32_t i = 0; i < table.capacity; ++i) {
    const auto& [name, value] = table.entries[i];
    const bool isUsed = i < table.count;
    require((name != nullptr) == isUsed && (value != nullptr) == isUsed, "other slots are null");
    if (!isUsed) continue;
    require(i == 0 || std::strcmp(table.entries[i - 1].name, name) < 0, "names are in order");
    require(findConfigEntry(&table, name) == value && findConfigEntry(&unsorted, name) == value,
            "each name is found, by halves and in a row");
    require(file.find(name) != std::string::npos && file.find(value) != std::string::npos,
            "texts are the file's");
    require(std::string(name).find_first_of(std::string("#=") + whiteSpace) == std::string::npos,
            "a name ends at white space");
    require(*value != '\0' && std::strpbrk(value, "#") == nullptr &&
                std::strchr(whiteSpace, *value) == nullptr,
            "a value is neither blank nor a comment");
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const testing::LogRecorder recorder;
  const Octets input(data, size);
  auto* table = static_cast<RuntimeConfiguration*>(std::calloc(1, sizeof(RuntimeConfiguration)));
  const std::string path = pathOf(input);
  require(readConfigFile(path.c_str(), table) == 0, "every file can be read to its end");
  const std::uint32_t count = table->count;
  const std::size_t complaints = testing::LogRecorder::take().size();
  checkTable(*table, {input.begin(), input.end()});
  const auto lines = static_cast<std::size_t>(std::ranges::count(input, '\n')) + 1;
  require(count + complaints <= lines, "a line defines a variable, or is logged, or neither");

  require(readConfigFile(path.c_str(), table) == 0 && table->count == count,
          "the same file again adds nothing");
  checkTable(*table, {input.begin(), input.end()});
  freeConfig(table);
  return 0;
}

}  // namespace addrtool::fuzz
