// Records what the code under test logs.
#pragma once

#include <iosfwd>
#include <string>
#include <vector>

namespace addrtool::testing {

struct LoggedMessage {
  int priority = 0;
  std::string text;

  bool operator==(const LoggedMessage&) const = default;
};

/// For readable failures.
void PrintTo(const LoggedMessage& message, std::ostream* stream);

/// While it exists, it is the log function. Sets errno on every call, as a failing log sink would.
/// Only one may exist at a time.
class LogRecorder {
 public:
  LogRecorder();
  ~LogRecorder();
  LogRecorder(const LogRecorder&) = delete;
  LogRecorder& operator=(const LogRecorder&) = delete;
  LogRecorder(LogRecorder&&) = delete;
  LogRecorder& operator=(LogRecorder&&) = delete;

  /// Returns the messages since the last call, in order.
  static std::vector<LoggedMessage> take();
};

}  // namespace addrtool::testing
