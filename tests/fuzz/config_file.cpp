// Fuzzes the runtime configuration file. The input is the file. The reader opens it by a path to a
// file in memory.
#include "runtime/config_file.h"

#include <sys/mman.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <map>

#include "fuzzing.h"
#include "support/log_recorder.h"

namespace addrtool::fuzz {
namespace {

const std::string whiteSpace = " \t\n\v\f\r";
const std::string nameCharacters =
    "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ_abcdefghijklmnopqrstuvwxyz";

// What a file defines and what the reader logs about it.
struct Content {
  std::map<std::string, std::string> values;
  std::vector<testing::LoggedMessage> complaints;

  bool operator==(const Content&) const = default;
};

// Removes a comment after the first character, then the last of an odd number of blanks.
std::string modelValue(const std::string& text) {
  const std::string value = text.substr(0, text.find('#', 1));
  const std::size_t blanks = value.size() - 1 - value.find_last_not_of(whiteSpace);
  return value.substr(0, value.size() - blanks % 2);
}

void modelLine(const std::string& line, Content& content) {
  const std::size_t start = line.find_first_not_of(whiteSpace);
  if (start == std::string::npos || line[start] == '#') return;
  const std::string text = line.substr(start);
  const std::string complaint = "Invalid variable definition " + text;

  const std::size_t nameEnd = text.find_first_not_of(nameCharacters);
  const std::size_t value = text.find_first_not_of(whiteSpace, nameEnd);
  if (value == nameEnd) {
    content.complaints.push_back({12, complaint + "\nExpected a space after variable name\n"});
  } else if (value == std::string::npos || text[value] == '#') {
    content.complaints.push_back({12, complaint + "\nExpected a value"});
  } else {
    content.values[text.substr(0, nameEnd)] = modelValue(text.substr(value));
  }
}

Content modelContent(const std::string& file) {
  Content content;
  for (const std::string& line : linesOf(file)) modelLine(upToNul(line), content);
  return content;
}

// Writes the input to a file in memory and returns its path.
std::string pathOf(Octets file) {
  static const int descriptor = memfd_create("config", MFD_CLOEXEC);
  require(ftruncate(descriptor, 0) == 0, "the file can be emptied");
  const ssize_t written = pwrite(descriptor, file.data(), file.size(), 0);
  require(written == static_cast<ssize_t>(file.size()), "the file can be filled");
  return "/proc/self/fd/" + std::to_string(descriptor);
}

void checkTable(const RuntimeConfiguration& table) {
  require(table.sorted == 1, "a table is sorted once it has been read");
  require(table.count <= table.capacity, "the entries fit");
  for (std::uint32_t i = 0; i < table.capacity; ++i) {
    const ConfigEntry& entry = table.entries[i];
    const bool isUsed = i < table.count;
    require((entry.name != nullptr) == isUsed && (entry.value != nullptr) == isUsed,
            "the slots in use are filled, the others null");
    require(!isUsed || i == 0 || std::strcmp(table.entries[i - 1].name, entry.name) < 0,
            "names are unique and in the order of their bytes");
  }
}

// The values by name, as findConfigEntry finds them.
std::map<std::string, std::string> readBack(const RuntimeConfiguration& table) {
  RuntimeConfiguration unsorted = table;
  unsorted.sorted = 0;
  std::map<std::string, std::string> values;
  for (std::uint32_t i = 0; i < table.count; ++i) {
    const std::string name = table.entries[i].name;
    const char* value = findConfigEntry(&table, name.c_str());
    require(value != nullptr, "every name in the table is found");
    values[name] = value;
    for (const std::string& sought : {name, name + "_", name.substr(1)}) {
      require(findConfigEntry(&table, sought.c_str()) == findConfigEntry(&unsorted, sought.c_str()),
              "searching by halves finds what searching in a row finds");
    }
  }
  return values;
}

}  // namespace

int checkInput(Octets input) {
  const testing::LogRecorder recorder;
  auto* table = static_cast<RuntimeConfiguration*>(std::calloc(1, sizeof(RuntimeConfiguration)));
  require(readConfigFile(pathOf(input).c_str(), table) == 0, "every file can be read to its end");
  checkTable(*table);
  require(Content{readBack(*table), testing::LogRecorder::take()} ==
              modelContent({input.begin(), input.end()}),
          "the last definition of a name wins, and any other line is logged");
  freeConfig(table);
  return 0;
}

}  // namespace addrtool::fuzz
