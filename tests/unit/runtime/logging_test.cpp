#include "runtime/logging.h"

#include <gtest/gtest.h>
#include <syslog.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
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

TEST(LogSettings, AtStartAreTheConsoleUpToInformation) {
  EXPECT_EQ(logTarget, nullptr);
  EXPECT_EQ(logThreshold, 6);
  EXPECT_EQ(logEnabled, 1);
  EXPECT_EQ(logFacility, 16);
  EXPECT_EQ(logMessage, consoleLog);
  EXPECT_EQ(logMessageV, consoleLogV);
}

TEST(ConsoleLog, PrintsFormattedLinesOnBothStreams) {
  const auto log = [] { logMessage(3, "%s %d", "text", 5); };
  EXPECT_EQ(runInChild(log), (Outcome{0, 0, "text 5\n", "text 5\n"}));
}

TEST(ConsoleLog, TheListFormPrintsTheSame) {
  const auto log = [] { logThroughList(3, "%s %d", "text", 5); };
  EXPECT_EQ(runInChild(log), (Outcome{0, 0, "text 5\n", "text 5\n"}));
}

TEST(ConsoleLog, ANewlineIsAddedEvenBehindANewline) {
  EXPECT_EQ(runInChild([] { logMessage(3, "text\n"); }), (Outcome{0, 0, "text\n\n", "text\n\n"}));
}

TEST(ConsoleLog, PrintsPrioritiesUpToTheThresholdComparedWhole) {
  // 12 is a mere warning (4) with the user facility (8), and yet above the threshold.
  for (const int priority : {-1, 0, 3, 6}) {
    EXPECT_EQ(runInChild([&] { logMessage(priority, "text"); }),
              (Outcome{0, 0, "text\n", "text\n"}))
        << "for priority " << priority;
  }
  for (const int priority : {7, 8, 12, 131}) {
    EXPECT_EQ(runInChild([&] { logMessage(priority, "text"); }), (Outcome{0, 0, "", ""}))
        << "for priority " << priority;
  }
}

TEST(ConsoleLog, TheThresholdCanBeMoved) {
  const auto logTwo = [](int threshold) {
    return runInChild([threshold] {
      logThreshold = threshold;
      logMessage(3, "three");
      logMessage(12, "twelve");
    });
  };
  EXPECT_EQ(logTwo(12), (Outcome{0, 0, "three\ntwelve\n", "three\ntwelve\n"}));
  EXPECT_EQ(logTwo(11), (Outcome{0, 0, "three\n", "three\n"}));
  EXPECT_EQ(logTwo(2), (Outcome{0, 0, "", ""}));
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

TEST(ConsoleLog, LogEnabledIsNotAsked) {
  EXPECT_EQ(runInChild([] {
              logEnabled = 0;
              logMessage(3, "text");
            }),
            (Outcome{0, 0, "text\n", "text\n"}));
}

TEST(ConsoleLog, FlushesBothStreams) {
  EXPECT_EQ(runInChild([] {
              std::setvbuf(stderr, nullptr, _IOFBF, BUFSIZ);
              logMessage(3, "text");
              _exit(0);
            }),
            (Outcome{0, 0, "text\n", "text\n"}));
}

// The checks below change settings of the process, so each runs in a child, which ends with the
// number of the first expectation that does not hold.
void expectInChild(const std::vector<bool>& expectations) {
  for (std::size_t i = 0; i < expectations.size(); ++i) {
    if (!expectations[i]) std::exit(static_cast<int>(i) + 1);
  }
}

TEST(InitLogging, WithATargetTheConsoleIsTheSink) {
  for (const char* const target : {"console", "stderr", "nowhere"}) {
    EXPECT_EQ(runInChild([&] {
                logMessage = syslog;
                logMessageV = vsyslog;
                initLogging(target, 4, LOG_LOCAL1, 0, "ident");
                expectInChild({logMessage == consoleLog, logMessageV == consoleLogV,
                               logTarget == target, logFacility == LOG_LOCAL1, logThreshold == 4});
              }),
              (Outcome{0, 0, "", ""}));
  }
}

TEST(InitLogging, WithoutATargetSyslogIsTheSink) {
  EXPECT_EQ(
      runInChild([] {
        logTarget = "console";
        initLogging(nullptr, 4, LOG_LOCAL1, 0, "ident");
        expectInChild({logMessage == syslog, logMessageV == vsyslog, logTarget == nullptr,
                       logFacility == LOG_LOCAL1, logThreshold == 4, setlogmask(0) == LOG_UPTO(4)});
      }),
      (Outcome{0, 0, "", ""}));
}

TEST(InitLogging, TheLevelDecidesWhetherLoggingIsEnabled) {
  for (const char* const target : {"console", "stderr", "nowhere"}) {
    EXPECT_EQ(runInChild([&] {
                initLogging(target, 0, LOG_MAIL, 0, "ident");
                const bool disabled = logEnabled == 0;
                initLogging(target, 1, LOG_MAIL, 0, "ident");
                expectInChild({disabled, logEnabled == 1});
              }),
              (Outcome{0, 0, "", ""}));
  }
}

TEST(SetLogLevel, LevelsBelowOneDisable) {
  struct Row {
    int level;
    int threshold;
    int enabled;
  };
  const std::vector<Row> table{
      {-2147483647 - 1, 0, 0},    {-1, 0, 0}, {0, 0, 0}, {1, 1, 1}, {7, 7, 1}, {12, 12, 1},
      {2147483647, 2147483647, 1}};
  for (const Row& row : table) {
    for (const char* const target : {static_cast<const char*>(nullptr), "console"}) {
      EXPECT_EQ(runInChild([&] {
                  logTarget = target;
                  logEnabled = 2;
                  setLogLevel(row.level);
                  expectInChild({logThreshold == row.threshold, logEnabled == row.enabled});
                }),
                (Outcome{0, 0, "", ""}))
          << "for level " << row.level;
    }
  }
}

TEST(SetLogLevel, WithoutATargetSyslogsMaskReachesUpToTheLevel) {
  // A mask of no priorities at all changes nothing, so negative levels leave the mask alone.
  const std::vector<std::pair<int, int>> table{
      {0, 0x1},         {1, 0x3},         {3, 0xf},
      {7, 0xff},        {8, 0x1ff},       {12, 0x1fff},
      {30, 0x7fffffff}, {31, 0x7fffffff}, {2147483647, 0x7fffffff},
      {-1, 0x2a},       {-2, 0x2a},       {-2147483647 - 1, 0x2a}};
  for (const auto& [level, mask] : table) {
    EXPECT_EQ(runInChild([newLevel = level, expected = mask] {
                setlogmask(0x2a);
                setLogLevel(newLevel);
                expectInChild({setlogmask(0) == expected});
              }),
              (Outcome{0, 0, "", ""}))
        << "for level " << level;
  }
}

TEST(SetLogLevel, WithATargetSyslogsMaskStays) {
  EXPECT_EQ(runInChild([] {
              logTarget = "console";
              setlogmask(0x2a);
              setLogLevel(3);
              expectInChild({setlogmask(0) == 0x2a});
            }),
            (Outcome{0, 0, "", ""}));
}

}  // namespace
}  // namespace addrtool::testing
