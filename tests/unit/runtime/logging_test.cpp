#include "runtime/logging.h"

#include <gtest/gtest.h>
#include <syslog.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "support/child_process.h"

namespace addrtool::testing {
namespace {

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
  EXPECT_EQ(runInChild([] { logMessage(3, "%s %d", "text", 5); }), onBothStreams("text 5\n"));
  EXPECT_EQ(runInChild([] { logThroughList(3, "%s %d", "text", 5); }), onBothStreams("text 5\n"));
  EXPECT_EQ(runInChild([] { logMessage(3, "text\n"); }), onBothStreams("text\n\n"));
}

TEST(ConsoleLog, PrintsPrioritiesUpToTheThresholdIncludingFacilityBits) {
  // 12 is a warning (4) with the user facility (8). As a number it is above the threshold.
  for (const int priority : {-1, 0, 3, 6}) {
    EXPECT_EQ(runInChild([&] { logMessage(priority, "text"); }), onBothStreams("text\n"))
        << "for priority " << priority;
  }
  for (const int priority : {7, 8, 12, 131}) {
    EXPECT_EQ(runInChild([&] { logMessage(priority, "text"); }), onBothStreams(""))
        << "for priority " << priority;
  }
}

TEST(ConsoleLog, TheThresholdCanBeChanged) {
  const auto logTwo = [](int threshold) {
    return runInChild([threshold] {
      logThreshold = threshold;
      logMessage(3, "three");
      logMessage(12, "twelve");
    });
  };
  EXPECT_EQ(logTwo(12), onBothStreams("three\ntwelve\n"));
  EXPECT_EQ(logTwo(11), onBothStreams("three\n"));
  EXPECT_EQ(logTwo(2), onBothStreams(""));
}

TEST(ConsoleLog, TheTargetChoosesTheStreams) {
  struct Row {
    const char* target;
    const char* out;
    const char* err;
  };
  const std::vector<Row> table{{"console", "text\n", "text\n"},
                               {"CONSOLE", "text\n", "text\n"},
                               {"stderr", "", "text\n"},
                               {"StdErr", "", "text\n"},
                               {"stdout", "", ""},
                               {"console ", "", ""},
                               {"consol", "", ""},
                               {"syslog", "", ""},
                               {"", "", ""}};
  for (const auto& [target, out, err] : table) {
    EXPECT_EQ(runInChild([name = target] {
                logTarget = name;
                logMessage(3, "text");
              }),
              (Outcome{0, 0, out, err}))
        << "for target \"" << target << '"';
  }
}

TEST(ConsoleLog, FlushesBothStreamsWhateverLogEnabledSays) {
  EXPECT_EQ(runInChild([] {
              logEnabled = 0;
              std::setvbuf(stderr, nullptr, _IOFBF, BUFSIZ);
              logMessage(3, "text");
              _exit(0);
            }),
            onBothStreams("text\n"));
}

TEST(ConsoleLog, StandardErrorComesFirst) {
  EXPECT_EQ(runWithBrokenOutput([] { logMessage(3, "text"); }),
            (Outcome{-1, SIGPIPE, "", "text\n"}));
}

TEST(ConsoleLog, AFailingStandardErrorLeavesStandardOutput) {
  EXPECT_EQ(runInChild([] {
              close(STDERR_FILENO);
              logMessage(3, "text");
            }),
            (Outcome{0, 0, "text\n", ""}));
}

// The checks below change settings of the process, so each runs in a child process. That ends with
// the number of the first expectation that does not hold.
void expectInChild(const std::function<std::vector<bool>()>& check) {
  EXPECT_EQ(runInChild([&check] {
              const std::vector<bool> expectations = check();
              for (std::size_t i = 0; i < expectations.size(); ++i) {
                if (!expectations[i]) std::exit(static_cast<int>(i) + 1);
              }
            }),
            silentSuccess);
}

TEST(InitLogging, SelectsTheConsoleIfThereIsATarget) {
  for (const char* const target : {"console", "stderr", "nowhere"}) {
    expectInChild([target] {
      logMessage = syslog;
      logMessageV = vsyslog;
      initLogging(target, 0, LOG_MAIL, 0, "ident");
      const bool disabled = logEnabled == 0;
      initLogging(target, 4, LOG_LOCAL1, 0, "ident");
      return std::vector{disabled,
                         logEnabled == 1,
                         logMessage == consoleLog,
                         logMessageV == consoleLogV,
                         logTarget == target,
                         logFacility == LOG_LOCAL1,
                         logThreshold == 4};
    });
  }
}

TEST(InitLogging, SelectsSyslogWithoutATarget) {
  expectInChild([] {
    logTarget = "console";
    initLogging(nullptr, 4, LOG_LOCAL1, 0, "ident");
    return std::vector{logMessage == syslog, logMessageV == vsyslog,
                       logTarget == nullptr, logFacility == LOG_LOCAL1,
                       logThreshold == 4,    setlogmask(0) == LOG_UPTO(4)};
  });
}

TEST(SetLogLevel, SetsTheThresholdAndDisablesBelow1) {
  constexpr int lowest = -2147483647 - 1;
  constexpr int highest = 2147483647;
  struct Row {
    int level;
    int threshold;
    int enabled;
  };
  for (const Row& row : std::vector<Row>{{lowest, 0, 0},
                                         {-1, 0, 0},
                                         {0, 0, 0},
                                         {1, 1, 1},
                                         {7, 7, 1},
                                         {12, 12, 1},
                                         {highest, highest, 1}}) {
    SCOPED_TRACE(row.level);
    for (const char* const target : {static_cast<const char*>(nullptr), "console"}) {
      expectInChild([&] {
        logTarget = target;
        logEnabled = 2;
        setLogLevel(row.level);
        return std::vector{logThreshold == row.threshold, logEnabled == row.enabled};
      });
    }
  }
}

TEST(SetLogLevel, SetsTheSyslogMaskOnlyWithoutATarget) {
  // A mask of no priorities at all changes nothing, so negative levels leave the mask alone.
  const std::vector<std::pair<int, int>> table{
      {0, 0x1},         {1, 0x3},         {3, 0xf},
      {7, 0xff},        {8, 0x1ff},       {12, 0x1fff},
      {30, 0x7fffffff}, {31, 0x7fffffff}, {2147483647, 0x7fffffff},
      {-1, 0x2a},       {-2, 0x2a},       {-2147483647 - 1, 0x2a}};
  for (const char* const target : {static_cast<const char*>(nullptr), "console"}) {
    for (const auto& row : table) {
      SCOPED_TRACE(row.first);
      expectInChild([&] {
        logTarget = target;
        setlogmask(0x2a);
        setLogLevel(row.first);
        return std::vector{setlogmask(0) == (target == nullptr ? row.second : 0x2a)};
      });
    }
  }
}

}  // namespace
}  // namespace addrtool::testing
