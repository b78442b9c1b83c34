// src/CMakeLists.txt says which folders of src a folder may include: those that it links. The
// compiler does not check that, as all folders share one include directory, so this test does. It
// also holds docs/architecture.md to the same arrows.
#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <set>
#include <string>

#include "support/files.h"

namespace addrtool::testing {
namespace {

namespace fs = std::filesystem;
using Folders = std::set<std::string>;
using Arrows = std::map<std::string, Folders>;

const fs::path root = ADDRTOOL_ROOT_DIR;

// The folders among the linked libraries: addrtool_inventory is the library of inventory.
Folders foldersIn(const std::string& libraries) {
  Folders folders;
  for (const auto& match : findAll(libraries, R"(addrtool_(\w+))")) {
    if (match[1] != "flags") folders.insert(match[1]);
  }
  return folders;
}

// What the build links, by folder. The program is the folder cli.
Arrows linkedFolders() {
  const std::string build = readFile(root / "src/CMakeLists.txt");
  Arrows arrows;
  for (const auto& match : findAll(build, R"re(add_subsystem\((\w+) SOURCES([^)]*)\))re")) {
    arrows[match[1]] = foldersIn(match[2]);
  }
  for (const auto& match : findAll(build, R"re(target_link_libraries\(addrtool ([^)]*)\))re")) {
    arrows["cli"].merge(foldersIn(match[1]));
  }
  return arrows;
}

// What the files of src include, by folder. Names each file that includes what it may not.
Arrows includedFolders(const Arrows& linked) {
  Arrows arrows;
  for (const auto& entry : fs::recursive_directory_iterator(root / "src")) {
    const fs::path& file = entry.path();
    if (file.extension() != ".cpp" && file.extension() != ".h") continue;
    const std::string folder = relative(file, root / "src").begin()->string();
    Folders& included = arrows[folder];
    const std::string text = readFile(file);
    for (const auto& match : findAll(text, R"re(#\s*include\s*"([^"/]*)[^"]*")re")) {
      if (match[1] == folder) continue;
      included.insert(match[1]);
      EXPECT_TRUE(linked.at(folder).contains(match[1])) << file << " must not include " << match[1];
    }
  }
  return arrows;
}

// What the diagram in the documentation draws.
Arrows drawnFolders() {
  const std::string text = readFile(root / "docs/architecture.md");
  Arrows arrows;
  for (const auto& match : findAll(text, R"((\w+) --> (\w+))")) arrows[match[1]].insert(match[2]);
  return arrows;
}

// Without the folders that know no other, which have no arrow to draw.
Arrows withoutLeaves(Arrows arrows) {
  std::erase_if(arrows, [](const auto& arrow) { return arrow.second.empty(); });
  return arrows;
}

TEST(Architecture, FoldersIncludeExactlyWhatTheyLink) {
  const Arrows linked = linkedFolders();
  EXPECT_EQ(linked.at("runtime"), Folders{});  // the build file was understood
  EXPECT_EQ(includedFolders(linked), linked);
}

TEST(Architecture, TheDiagramDrawsWhatIsLinked) {
  EXPECT_EQ(drawnFolders(), withoutLeaves(linkedFolders()));
}

// The options of the program: the table of getopt_long, the short options and the switch.
TEST(Architecture, EachOptionIsInTheTableTheShortOptionsAndTheSwitch) {
  const std::string text = readFile(root / "src/cli/main.cpp");
  std::multiset<std::string> table;
  std::multiset<std::string> shortOptions;
  std::multiset<std::string> cases;
  for (const auto& row :
       findAll(text, R"re(\{"[^"]+", (no|required)_argument, \w+, '?([^'}]+)'?\},)re")) {
    table.insert(row[2] + (row[1] == "required" ? ":" : ""));
  }
  const auto call = findAll(text, R"re(getopt_long\([^"]*"([^"]*)")re").at(0);
  for (const auto& match : findAll(call[1], ".:?")) {
    shortOptions.insert(match[0]);
  }
  for (const auto& match : findAll(text, R"re(case '(.)':([^:]*optarg)?)re")) {
    cases.insert(match[1] + (match[2].empty() ? "" : ":"));
  }
  EXPECT_EQ(std::set<std::string>(table.begin(), table.end()).size(), table.size());
  EXPECT_EQ(cases, table);
  shortOptions.insert("m");  // --main has no short form
  EXPECT_EQ(shortOptions, table);
}

}  // namespace
}  // namespace addrtool::testing
