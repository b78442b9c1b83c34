#include "runtime/logging.h"

#include <strings.h>
#include <syslog.h>

#include <algorithm>
#include <cstdarg>
#include <cstdio>

namespace addrtool {

const char* logTarget = nullptr;
int logThreshold = LOG_INFO;
int logEnabled = 1;
int logFacility = LOG_MAIL;
void (*logMessage)(int priority, const char* format, ...) = consoleLog;
void (*logMessageV)(int priority, const char* format, va_list arguments) = consoleLogV;

namespace {

bool targetIs(const char* name) {
  return strcasecmp(logTarget, name) == 0;
}

__attribute__((format(printf, 2, 0))) void printLine(std::FILE* stream, const char* format,
                                                     va_list arguments) {
  std::vfprintf(stream, format, arguments);
  std::fputc('\n', stream);
  std::fflush(stream);
}

}  // namespace

void consoleLogV(int priority, const char* format, va_list arguments) {
  if (priority > logThreshold) return;
  const bool toBoth = logTarget == nullptr || targetIs("console");
  if (!toBoth && !targetIs("stderr")) return;

  va_list again;
  va_copy(again, arguments);
  printLine(stderr, format, arguments);
  if (toBoth) printLine(stdout, format, again);
  va_end(again);
}

void consoleLog(int priority, const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  consoleLogV(priority, format, arguments);
  va_end(arguments);
}

void initLogging(const char* target, int level, int facility, int options, const char* ident) {
  logTarget = target;
  logFacility = facility;
  if (target != nullptr) {
    logMessage = consoleLog;
    logMessageV = consoleLogV;
    if (!targetIs("console") && !targetIs("stderr")) logEnabled = 0;
  } else {
    closelog();
    openlog(ident, options | LOG_PID, facility);
    logMessage = syslog;
    logMessageV = vsyslog;
  }
  setLogLevel(level);
}

void setLogLevel(int level) {
  logEnabled = level < 1 ? 0 : 1;
  logThreshold = std::max(level, 0);
  if (logTarget == nullptr) {
    const int lastBit = std::clamp(level, -1, 30);  // the range of bits that an int mask has
    setlogmask(static_cast<int>((1U << static_cast<unsigned>(lastBit + 1)) - 1U));
  }
}

}  // namespace addrtool
