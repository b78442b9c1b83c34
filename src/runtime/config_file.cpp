#include "runtime/config_file.h"

#include <cctype>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "runtime/config_table.h"
#include "runtime/logging.h"

namespace addrtool {
namespace {

// Points into a line. Both are null when the line defines nothing.
struct Definition {
  const char* name;
  const char* value;
};

bool isSpace(char character) {
  return std::isspace(static_cast<unsigned char>(character)) != 0;
}

bool isNameCharacter(char character) {
  return std::isalnum(static_cast<unsigned char>(character)) != 0 || character == '_';
}

bool isEndOrComment(char character) {
  return character == '\0' || character == '#';
}

char* skipSpace(char* text) {
  while (isSpace(*text)) ++text;
  return text;
}

// Returns the end of the value, which starts with neither white space nor a comment.
char* endOfValue(char* value) {
  char* marker = nullptr;
  char* next = value;
  for (; !isEndOrComment(*next); ++next) {
    // A second white-space character clears the marker again (required, see the header).
    marker = isSpace(*next) && marker == nullptr ? next : nullptr;
  }
  return marker == nullptr ? next : marker;
}

// Finds the definition in a line and terminates its name and its value in place.
Definition cutDefinition(char* line) {
  char* name = skipSpace(line);
  if (isEndOrComment(*name)) return {};

  char* nameEnd = name;
  while (isNameCharacter(*nameEnd)) ++nameEnd;
  if (!isSpace(*nameEnd)) {
    logMessage(fileReaderPriority,
               "Invalid variable definition %s\nExpected a space after variable name\n", name);
    return {};
  }
  char* value = skipSpace(nameEnd);
  if (isEndOrComment(*value)) {
    logMessage(fileReaderPriority, "Invalid variable definition %s\nExpected a value", name);
    return {};
  }
  *endOfValue(value) = '\0';
  *nameEnd = '\0';
  return {.name = name, .value = value};
}

int logReadError() {
  const int savedErrno = errno;
  logMessage(fileReaderPriority, "Unable to read configuration file: %s",
             std::strerror(savedErrno));
  errno = savedErrno;
  return -1;
}

int storeDefinition(RuntimeConfiguration* table, char* line) {
  const Definition definition = cutDefinition(line);
  if (definition.name == nullptr) return 0;
  return setConfigEntry(table, definition.name, definition.value);
}

int readDefinitions(std::FILE* file, RuntimeConfiguration* table, char** line, std::size_t* size) {
  while (getline(line, size, file) != -1) {
    // If a read error cut this line short, the next getline fails without setting errno again.
    const int readError = errno;
    if (storeDefinition(table, *line) != 0) return -1;
    errno = readError;  // the log function may have changed it
  }
  sortConfig(table);
  return std::feof(file) != 0 && std::ferror(file) == 0 ? 0 : logReadError();
}

}  // namespace

int readConfigFile(const char* path, RuntimeConfiguration* table) {
  if (growConfig(table) != 0) return -1;
  std::FILE* file = std::fopen(path, "rt");
  if (file == nullptr) {
    const int savedErrno = errno;
    logMessage(fileReaderPriority, "unable to open configuration file %s: %s\n", path,
               std::strerror(savedErrno));
    errno = savedErrno;
    return -1;
  }
  char* line = nullptr;
  std::size_t size = 0;
  const int result = readDefinitions(file, table, &line, &size);
  const int savedErrno = errno;
  std::free(line);
  std::fclose(file);
  errno = savedErrno;
  return result;
}

}  // namespace addrtool
