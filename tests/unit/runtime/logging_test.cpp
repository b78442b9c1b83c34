#include "runtime/logging.h"

#include <gtest/gtest.h>
#include <syslog.h>

#include <algorithm>
#include <climits>
#include <map>

#include "support/child_process.h"
#include "support/log_recorder.h"

namespace addrtool::testing {
namespace {

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

TEST(InitLogging, SelectsTheConsoleIfThereIsATarget) {
  for (const char* const target : {"console", "stderr", "nowhere"}) {
    expectInChild(silentSuccess, [=] {
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
    });
  }
}

TEST(InitLogging, SelectsSyslogWithoutATarget) {
  expectInChild(silentSuccess, [] {
    logTarget = "console";
    initLogging(nullptr, 4, LOG_LOCAL1, 0, "ident");
    EXPECT_EQ(logMessage, syslog);
    EXPECT_EQ(logMessageV, vsyslog);
    EXPECT_EQ(logTarget, nullptr);
    EXPECT_EQ(logFacility, LOG_LOCAL1);
    EXPECT_EQ(logThreshold, 4);
    EXPECT_EQ(setlogmask(0), LOG_UPTO(4));
  });
}

TEST(SetLogLevel, SetsThresholdAndMaskAndDisablesBelow1) {
  // A mask of no priorities at all changes nothing, so negative levels leave the mask alone. With a
  // target, every level does.
  constexpr int oldMask = 0x2a;
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
  });
}

}  // namespace
}  // namespace addrtool::testing
