// Fuzzes the runtime configuration file. The input is the file. The reader opens it by a path to a
// file in memory.
#include "runtime/config_file.h"

#include <sys/mman.h>
#include <unistd.h>

#include <cstdarg>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "require.h"
#include "runtime/logging.h"
#include "text_models.h"

namespace addrtool::fuzz {
namespace {

constexpr const char* whiteSpace = " \t\n\v\f\r";

bool isWhite(char character) {
  return character != '\0' && std::strchr(whiteSpace, character) != nullptr;
}

bool isOfName(char character) {
  return (character >= '0' && character <= '9') || (character >= 'A' && character <= 'Z') ||
         (character >= 'a' && character <= 'z') || character == '_';
}

// What a file defines and what the reader logs about it.
struct Content {
  std::map<std::string, std::string> values;
  std::vector<std::string> complaints;

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

  std::size_t nameEnd = 0;
  while (nameEnd < text.size() && isOfName(text[nameEnd])) ++nameEnd;
  if (nameEnd == text.size() || !isWhite(text[nameEnd])) {
    content.complaints.push_back(complaint + "\nExpected a space after variable name\n");
    return;
  }
  const std::size_t value = text.find_first_not_of(whiteSpace, nameEnd);
  if (value == std::string::npos || text[value] == '#') {
    content.complaints.push_back(complaint + "\nExpected a value");
    return;
  }
  content.values[text.substr(0, nameEnd)] = modelValue(text.substr(value));
}

Content modelContent(const std::string& file) {
  Content content;
  std::string line;
  for (const char character : file) {
    line += character;
    if (character != '\n') continue;
    modelLine(upToNul(line), content);
    line.clear();
  }
  modelLine(upToNul(line), content);
  return content;
}

std::vector<std::string> logged;

__attribute__((format(printf, 2, 3))) void keepLogged(int priority, const char* format, ...) {
  require(priority == 12, "the reader logs at its own priority");
  va_list arguments;
  va_start(arguments, format);
  char* text = nullptr;
  require(vasprintf(&text, format, arguments) >= 0, "what is logged can be formatted");
  va_end(arguments);
  logged.emplace_back(text);
  std::free(text);
}

// Writes the input to a file in memory and returns its path.
std::string pathOf(std::string_view file) {
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

void checkFind(const RuntimeConfiguration& table, const std::string& name) {
  RuntimeConfiguration unsorted = table;
  unsorted.sorted = 0;
  require(findConfigEntry(&table, name.c_str()) == findConfigEntry(&unsorted, name.c_str()),
          "searching by halves finds what searching in a row finds");
}

std::map<std::string, std::string> readBack(const RuntimeConfiguration& table) {
  std::map<std::string, std::string> values;
  for (std::uint32_t i = 0; i < table.count; ++i) {
    const std::string name = table.entries[i].name;
    const char* value = findConfigEntry(&table, name.c_str());
    require(value != nullptr, "every name in the table is found");
    values[name] = value;
    checkFind(table, name);
    checkFind(table, name + "_");
    checkFind(table, name.substr(1));
  }
  return values;
}

}  // namespace
}  // namespace addrtool::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace addrtool;
  using namespace addrtool::fuzz;
  const std::string file(reinterpret_cast<const char*>(data), size);
  logMessage = keepLogged;
  logged.clear();

  auto* table = static_cast<RuntimeConfiguration*>(std::calloc(1, sizeof(RuntimeConfiguration)));
  require(readConfigFile(pathOf(file).c_str(), table) == 0, "every file can be read to its end");
  checkTable(*table);
  require(Content{readBack(*table), logged} == modelContent(file),
          "the last definition of a name wins, and what is none is logged");
  freeConfig(table);
  return 0;
}
