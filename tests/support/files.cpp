#include "support/files.h"

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <stdexcept>

namespace addrtool::testing {

TemporaryDirectory::TemporaryDirectory() {
  std::string name = (fs::temp_directory_path() / "addrtool.XXXXXX").string();
  if (mkdtemp(name.data()) == nullptr) throw std::runtime_error("mkdtemp failed");
  path_ = name;
}

TemporaryDirectory::~TemporaryDirectory() {
  std::error_code ignored;
  fs::remove_all(path_, ignored);
}

std::string readFile(const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  if (!file) throw std::runtime_error(path.string() + ": cannot be read");
  std::ostringstream contents;
  contents << file.rdbuf();
  return contents.str();
}

void writeFile(const fs::path& path, const std::string& contents) {
  std::ofstream file(path, std::ios::binary);
  file << contents;
  if (!file.flush()) throw std::runtime_error(path.string() + ": cannot be written");
}

std::FILE* openTexts(std::queue<std::string>& texts) {
  const auto read = [](void* cookie, char* buffer, std::size_t size) -> ssize_t {
    auto& rest = *static_cast<std::queue<std::string>*>(cookie);
    if (rest.empty()) return 0;
    const std::size_t count = rest.front().copy(buffer, size);
    rest.front().erase(0, count);
    if (rest.front().empty()) rest.pop();
    return count == 0 ? -1 : static_cast<ssize_t>(count);
  };
  return fopencookie(&texts, "r", {read, nullptr, nullptr, nullptr});
}

std::vector<std::string> listDirectory(const fs::path& path) {
  std::vector<std::string> names;
  for (const auto& entry : fs::directory_iterator(path)) names.push_back(entry.path().filename());
  std::sort(names.begin(), names.end());
  return names;
}

}  // namespace addrtool::testing
