#include "support/log_recorder.h"

#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <ostream>
#include <utility>

#include "runtime/logging.h"

namespace addrtool::testing {
namespace {

std::vector<LoggedMessage> recorded;

__attribute__((format(printf, 2, 3))) void record(int priority, const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  char* text = nullptr;
  if (vasprintf(&text, format, arguments) != -1) recorded.push_back({priority, text});
  va_end(arguments);
  std::free(text);
  errno = EXDEV;
}

}  // namespace

void PrintTo(const LoggedMessage& message, std::ostream* stream) {
  *stream << "at " << message.priority << ": \"" << message.text << '"';
}

LogRecorder::LogRecorder() {
  recorded.clear();
  logMessage = record;
}

LogRecorder::~LogRecorder() {
  logMessage = consoleLog;
}

std::vector<LoggedMessage> LogRecorder::take() {
  return std::exchange(recorded, {});
}

}  // namespace addrtool::testing
