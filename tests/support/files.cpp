#include "support/files.h"

#include <regex.h>

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

std::vector<std::vector<std::string>> findAll(const std::string& text, const std::string& pattern) {
  regex_t regex;  // <regex> would take seconds to compile in each test file
  if (regcomp(&regex, pattern.c_str(), REG_EXTENDED) != 0) throw std::invalid_argument(pattern);
  std::vector<std::vector<std::string>> matches;
  std::vector<regmatch_t> groups(regex.re_nsub + 1);
  const char* rest = text.c_str();
  int flags = 0;
  while (regexec(&regex, rest, groups.size(), groups.data(), flags) == 0 && groups[0].rm_eo > 0) {
    std::vector<std::string>& match = matches.emplace_back();
    for (const regmatch_t& group : groups) {
      match.emplace_back(group.rm_so < 0 ? ""
                                         : std::string(rest + group.rm_so, rest + group.rm_eo));
    }
    rest += groups[0].rm_eo;
    flags = REG_NOTBOL;
  }
  regfree(&regex);
  return matches;
}

}  // namespace addrtool::testing
