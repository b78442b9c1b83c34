#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/child_process.h"

namespace addrtool::testing {
namespace {

const std::string message =
    "Some parameters in command string are left unprocessed. Check parameters please.\n";

// The message may go on with the system's error, if the program's start happened to leave one.
bool isMessage(const std::string& text) {
  return text == message || (text.starts_with(message + "System error ") && text.ends_with('\n') &&
                             text.find('\n', message.size()) == text.size() - 1);
}

TEST(LeftoverOperands, EndTheProgramBeforeAnyAction) {
  for (const std::vector<std::string>& command :
       {std::vector<std::string>{"addrtool", "-l", "extra"},
        {"addrtool", "extra", "-l"},
        {"addrtool", "-l", "--", "-l"},
        {"addrtool", "-v", "10.0.0.1", "extra", "more"},
        {"addrtool", "-h", "extra"},
        {"addrtool", "-d", "192.0.2.1", "extra"},
        {"addrtool", "-l", ""}}) {
    const Outcome outcome = runCommand(command);
    EXPECT_EQ(outcome.exitStatus, 1) << outcome.err;
    EXPECT_TRUE(isMessage(outcome.err)) << outcome.err;
    EXPECT_EQ(outcome.out, outcome.err);
  }
}

// The complaint about -x finds the disk full, and that is the error which is reported later.
TEST(LeftoverOperands, AreReportedWithTheErrorThatHappensToBeSet) {
  EXPECT_EQ(runShell("addrtool -x -l extra 2>/dev/full"),
            (Outcome{1, 0, message + "System error 28: No space left on device\n", ""}));
}

TEST(LeftoverOperands, AreLookedForOnlyWhenSomethingIsAsked) {
  EXPECT_EQ(runCommand({"addrtool", "extra"}).exitStatus, 2);
  EXPECT_EQ(runCommand({"addrtool", "--main", "extra"}).exitStatus, 2);
}

TEST(LeftoverOperands, AnAddTakesExactlyTwo) {
  const Outcome usage = runCommand({"addrtool"});
  for (const std::vector<std::string>& command :
       {std::vector<std::string>{"addrtool", "-a", "eth0"},
        {"addrtool", "-a", "eth0", "192.0.2.5"},
        {"addrtool", "-a", "eth0", "192.0.2.5", "255.255.255.0", "extra"}}) {
    EXPECT_EQ(runCommand(command), usage);
  }
}

TEST(LeftoverOperands, WithAnAddTheyAreTakenAndNotReported) {
  const Outcome outcome = runCommand({"addrtool", "-a", "nosuch0", "192.0.2.5", "255.255.255.0"});
  EXPECT_EQ(outcome.exitStatus, 1);
  EXPECT_EQ(outcome.out, "");
  EXPECT_EQ(outcome.err.find("unprocessed"), std::string::npos) << outcome.err;
}

}  // namespace
}  // namespace addrtool::testing
