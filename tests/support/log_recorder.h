// Records what the code under test logs.
#pragma once

#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include "runtime/logging.h"

namespace addrtool::testing {

struct LoggedMessage {
  int priority = 0;
  std::string text;
  bool operator==(const LoggedMessage&) const = default;
};

inline void PrintTo(const LoggedMessage& message, std::ostream* stream) {
  *stream << "at " << message.priority << ": \"" << message.text << '"';
}

/// While it exists, it is the log function. Sets errno on every call, as a failing log sink would.
/// Only one may exist at a time.
class LogRecorder {
 public:
  LogRecorder() {
    recorded.clear();
    logMessage = record;
  }
  ~LogRecorder() { logMessage = consoleLog; }
  LogRecorder(const LogRecorder&) = delete;
  LogRecorder& operator=(const LogRecorder&) = delete;

  /// Returns the messages since the last call, in order.
  static std::vector<LoggedMessage> take() { return std::exchange(recorded, {}); }

 private:
  __attribute__((format(printf, 2, 3))) static void record(int priority, const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    char* text = nullptr;
    if (vasprintf(&text, format, arguments) != -1) recorded.push_back({priority, text});
    va_end(arguments);
    std::free(text);
    errno = EXDEV;
  }

  inline static std::vector<LoggedMessage> recorded;
};

}  // namespace addrtool::testing
