#include "runtime/messages.h"

#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace addrtool {

const char* messageProgramName = nullptr;

namespace {

constexpr std::size_t initialSize = 4096;

struct MessageBuffer {
  char* text;  // owned
  std::size_t size;
  std::size_t length;  // of the text, without its terminator
};

__attribute__((format(printf, 2, 0))) void formatText(MessageBuffer& buffer, const char* format,
                                                      va_list arguments) {
  va_list again;
  va_copy(again, arguments);
  const int needed = std::vsnprintf(buffer.text, buffer.size, format, arguments);
  if (needed < 0) {
    buffer.text[0] = '\0';  // the locale cannot represent a character, so there is no text
  } else {
    buffer.length = static_cast<std::size_t>(needed);
  }
  if (buffer.length >= buffer.size) {
    if (void* grown = std::realloc(buffer.text, buffer.length + 1)) {
      buffer.text = static_cast<char*>(grown);
      buffer.size = buffer.length + 1;
      std::vsnprintf(buffer.text, buffer.size, format, again);
    } else {
      buffer.length = buffer.size - 1;
    }
  }
  va_end(again);
}

void appendSystemError(MessageBuffer& buffer, int error) {
  const std::size_t room = buffer.size - buffer.length;
  const int needed = std::snprintf(buffer.text + buffer.length, room, "\nSystem error %d: %s",
                                   error, std::strerror(error));
  if (static_cast<std::size_t>(needed) < room) return;

  // The buffer grows by one byte, whatever the suffix needs. So a suffix that did not fit is
  // dropped (required).
  if (void* grown = std::realloc(buffer.text, buffer.length + 2)) {
    buffer.text = static_cast<char*>(grown);
    buffer.text[buffer.length] = '\0';
  }
}

const char* lastComponent(const char* path) {
  const char* slash = std::strrchr(path, '/');
  return slash == nullptr ? path : slash + 1;
}

void printOn(std::FILE* stream, const char* message) {
  const char* prefix = messageProgramName == nullptr ? "" : lastComponent(messageProgramName);
  if (*prefix != '\0') std::fprintf(stream, "%s: ", prefix);
  std::fputs(message, stream);
  const std::size_t length = std::strlen(message);
  if (length == 0 || message[length - 1] != '\n') std::fputc('\n', stream);
  std::fflush(stream);
}

}  // namespace

void reportMessage(int status, int flag, const char* format, ...) {
  const int savedErrno = errno;
  auto* text = static_cast<char*>(std::malloc(initialSize));
  if (text == nullptr) {
    printMessage("Can't allocate memory for error message", status, flag);
    return;
  }
  MessageBuffer buffer{.text = text, .size = initialSize, .length = 0};
  va_list arguments;
  va_start(arguments, format);
  formatText(buffer, format, arguments);
  va_end(arguments);

  errno = savedErrno;
  if (savedErrno != 0) appendSystemError(buffer, savedErrno);
  printMessage(buffer.text, status, flag);
  std::free(buffer.text);
}

int printMessage(const char* message, int status, int /*flag*/) {
  printOn(stderr, message);
  printOn(stdout, message);
  if (status != 0) std::exit(status);
  return 0;
}

void checkLeftoverArguments(int argc, int firstOperand, char** /*argv*/) {
  if (argc == firstOperand) return;
  reportMessage(1, unusedFlag,
                "Some parameters in command string are left unprocessed. Check parameters please.");
}

void checkRequiredParameter(int present, const char* value, const char* name) {
  if (present == 0 || (value != nullptr && *value != '\0')) return;
  reportMessage(1, unusedFlag, "Missing parameter '%s' or previous parameter is empty.\n", name);
}

void* reallocOrDie(void* pointer, std::size_t size) {
  void* result = std::realloc(pointer, size);
  if (result == nullptr) reportMessage(1, unusedFlag, "alloc(%d)", static_cast<int>(size));
  return result;
}

}  // namespace addrtool
