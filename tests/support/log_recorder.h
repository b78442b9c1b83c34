// Catches what the code under test logs.
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

/// While it lives, it is the log function. Like a sink that has troubles of its own, it leaves
/// errno changed by every message. One at a time.
class LogRecorder {
 public:
  LogRecorder();
  ~LogRecorder();
  LogRecorder(const LogRecorder&) = delete;
  LogRecorder& operator=(const LogRecorder&) = delete;
  LogRecorder(LogRecorder&&) = delete;
  LogRecorder& operator=(LogRecorder&&) = delete;

  /// The messages since the last call, in their order.
  static std::vector<LoggedMessage> take();
};

}  // namespace addrtool::testing
