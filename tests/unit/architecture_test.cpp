// The folders of src may include one another downwards only.
#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <regex>
#include <set>
#include <sstream>
#include <string>

#include "support/files.h"

namespace addrtool::testing {
namespace {

namespace fs = std::filesystem;
using Folders = std::set<std::string>;

// By folder: the folders that it may know besides itself.
const std::map<std::string, Folders> allowed{
    {"cli", {"changes", "container", "inventory", "persist", "runtime"}},
    {"changes", {"inventory", "persist", "runtime"}},
    {"persist", {"inventory", "runtime"}},
    {"inventory", {}},
    {"container", {}},
    {"runtime", {}},
};

// What the file's #include "..." lines name, down to the first slash.
Folders foldersIncludedBy(const fs::path& file) {
  static const std::regex include(R"re(\s*#\s*include\s*"([^"/]*)[^"]*".*)re");
  Folders folders;
  std::istringstream lines(readFile(file));
  std::smatch match;
  for (std::string line; std::getline(lines, line);) {
    if (std::regex_match(line, match, include)) folders.insert(match[1]);
  }
  return folders;
}

TEST(Architecture, FoldersIncludeOneAnotherDownwardsOnly) {
  Folders seen;
  for (const auto& entry : fs::recursive_directory_iterator(ADDRTOOL_SOURCE_DIR)) {
    const fs::path& file = entry.path();
    if (file.extension() != ".cpp" && file.extension() != ".h") continue;
    const std::string folder = relative(file, ADDRTOOL_SOURCE_DIR).begin()->string();
    seen.insert(folder);
    ASSERT_TRUE(allowed.contains(folder)) << file << " is in a folder without a place";
    for (const std::string& included : foldersIncludedBy(file)) {
      EXPECT_TRUE(included == folder || allowed.at(folder).contains(included))
          << file << " must not include " << included;
    }
  }
  for (const auto& [folder, ignored] : allowed) EXPECT_TRUE(seen.contains(folder)) << folder;
}

}  // namespace
}  // namespace addrtool::testing
