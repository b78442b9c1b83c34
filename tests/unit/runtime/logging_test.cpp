#include "runtime/logging.h"

#include <gtest/gtest.h>
#include <syslog.h>
#include <unistd.h>

#include <algorithm>
#include <climits>
#include <cstdarg>
#include <map>

#include "runtime/messages.h"
#include "support/child_process.h"

namespace addrtool::testing {
namespace {

using Lines = std::vector<std::string>;

Lines syslogCalls;  // of openlog(3) and closelog(3)

// Logs through logMessageV, which takes the arguments as a list.
__attribute__((format(printf, 2, 3))) void logThroughList(int priority, const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  logMessageV(priority, format, arguments);
  va_end(arguments);
}

TEST(LogSettings, DefaultToTheConsoleAndLevelInfo) {
  EXPECT_EQ(logTarget, nullptr);
  EXPECT_EQ(logThreshold, 6);
  EXPECT_EQ(logEnabled, 1);
  EXPECT_EQ(logFacility, 16);
  EXPECT_EQ(logMessage, consoleLog);
  EXPECT_EQ(logMessageV, consoleLogV);
}

TEST(ConsoleLog, PrintsFormattedLinesOnBothStreams) {
  expectInChild(onBothStreams("text 5\n"), [] { logMessage(3, "%s %d", "text", 5); });
  expectInChild(onBothStreams("text 5\n"), [] { logThroughList(3, "%s %d", "text", 5); });
  expectInChild(onBothStreams("text\n\n"), [] { logMessage(3, "text\n"); });
}

TEST(ConsoleLog, PrintsTwiceOnOneStreamAndNoNameOfTheProgram) {
  expectInChild({0, 0, "text\ntext\n", ""}, [] {
    dup2(STDOUT_FILENO, STDERR_FILENO);
    messageProgramName = "addrtool";
    logMessage(3, "text");
  });
}

TEST(ConsoleLog, PrintsPrioritiesUpToTheThresholdIncludingFacilityBits) {
  // 12 is a warning (4) with the user facility (8). As a number it is above the threshold.
  for (const int priority : {-1, 0, 3, 6, 7, 8, 12, 131}) {
    SCOPED_TRACE(priority);
    expectInChild(onBothStreams(priority <= 6 ? "text\n" : ""),
                  [=] { logMessage(priority, "text"); });
  }
}

TEST(ConsoleLog, TheThresholdCanBeChanged) {
  const auto expectLogged = [](int threshold, const std::string& text) {
    expectInChild(onBothStreams(text), [=] {
      logThreshold = threshold;
      logMessage(3, "three");
      logMessage(12, "twelve");
    });
  };
  expectLogged(12, "three\ntwelve\n");
  expectLogged(11, "three\n");
  expectLogged(2, "");
}

TEST(ConsoleLog, TheTargetChoosesTheStreams) {
  const auto expectLogged = [](const char* target, const Outcome& outcome) {
    SCOPED_TRACE(target);
    expectInChild(outcome, [=] {
      logTarget = target;
      logMessage(3, "text");
    });
  };
  for (const auto* target : {"console", "CONSOLE"}) expectLogged(target, onBothStreams("text\n"));
  for (const auto* target : {"stderr", "StdErr"}) expectLogged(target, {0, 0, "", "text\n"});
  for (const auto* target : {"stdout", "console ", "consol", "syslog", ""}) {
    expectLogged(target, silentSuccess);
  }
}

// The tests below change settings of the process, so they run in child processes. An expectation
// that fails there prints its message, so the outcome is not silent.

constexpr int oldMask = 0x2a;

TEST(InitLogging, SelectsTheConsoleIfThereIsATargetAndLeavesSyslogAlone) {
  for (const char* const target : {"console", "stderr", "nowhere", ""}) {
    expectInChild(silentSuccess, [=] {
      setlogmask(oldMask);
      logMessage = syslog;
      logMessageV = vsyslog;
      initLogging(target, 0, LOG_MAIL, 0, "ident");
      EXPECT_EQ(logEnabled, 0);
      initLogging(target, 4, LOG_LOCAL1, 0, "ident");
      EXPECT_EQ(logEnabled, 1);
      EXPECT_EQ(logMessage, consoleLog);
      EXPECT_EQ(logMessageV, consoleLogV);
      EXPECT_EQ(logTarget, target);
      EXPECT_EQ(logFacility, LOG_LOCAL1);
      EXPECT_EQ(logThreshold, 4);
      EXPECT_EQ(setlogmask(0), oldMask);
      EXPECT_EQ(syslogCalls, Lines{});
    });
  }
}

TEST(InitLogging, ReopensSyslogWithTheProcessIdIfThereIsNoTarget) {
  expectInChild(silentSuccess, [] {
    logTarget = "console";
    initLogging(nullptr, 4, LOG_LOCAL1, 0, "first");
    initLogging(nullptr, 4, LOG_DAEMON, LOG_NDELAY | LOG_PERROR, "second");
    EXPECT_EQ(logMessage, syslog);
    EXPECT_EQ(logMessageV, vsyslog);
    EXPECT_EQ(logTarget, nullptr);
    EXPECT_EQ(logFacility, LOG_DAEMON);
    EXPECT_EQ(logThreshold, 4);
    EXPECT_EQ(setlogmask(0), LOG_UPTO(4));
    // 1 is LOG_PID, 8 is LOG_NDELAY, 32 is LOG_PERROR
    EXPECT_EQ(syslogCalls,
              (Lines{"closelog", "openlog first 1 136", "closelog", "openlog second 41 24"}));
  });
}

TEST(SetLogLevel, SetsThresholdAndMaskAndDisablesBelow1) {
  // A mask of no priorities at all changes nothing, so negative levels leave the mask alone. With a
  // target, every level does.
  const std::map<int, int> masks{{INT_MIN, oldMask}, {-2, oldMask}, {-1, oldMask},
                                 {0, 0x1},           {1, 0x3},      {3, 0xf},
                                 {7, 0xff},          {8, 0x1ff},    {12, 0x1fff},
                                 {30, INT_MAX},      {31, INT_MAX}, {INT_MAX, INT_MAX}};
  expectInChild(silentSuccess, [&] {
    for (const char* const target : {static_cast<const char*>(nullptr), "console"}) {
      for (const auto& [level, mask] : masks) {
        SCOPED_TRACE(level);
        logTarget = target;
        logEnabled = 2;
        setlogmask(oldMask);
        setLogLevel(level);
        EXPECT_EQ(logThreshold, std::max(level, 0));
        EXPECT_EQ(logEnabled, level < 1 ? 0 : 1);
        EXPECT_EQ(setlogmask(0), target == nullptr ? mask : oldMask);
      }
    }
    EXPECT_EQ(syslogCalls, Lines{});
  });
}

}  // namespace
}  // namespace addrtool::testing

// The linker redirects these calls (--wrap), so that no test writes to the log of this machine.
// NOLINTBEGIN(bugprone-reserved-identifier, cert-dcl*, readability-identifier-naming)
extern "C" {

void __wrap_openlog(const char* ident, int options, int facility) {
  addrtool::testing::syslogCalls.push_back("openlog " + std::string(ident) + ' ' +
                                           std::to_string(options) + ' ' +
                                           std::to_string(facility));
}

void __wrap_closelog() {
  addrtool::testing::syslogCalls.emplace_back("closelog");
}

}  // extern "C"
// NOLINTEND(bugprone-reserved-identifier, cert-dcl*, readability-identifier-naming)
