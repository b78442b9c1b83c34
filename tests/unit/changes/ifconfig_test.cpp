#include "changes/ifconfig.h"

#include "support/canned_machine.h"
#include "support/child_process.h"

namespace addrtool::testing {
namespace {

// The wait statuses are those of Linux. 0x8b is signal 11 with the core bit.
TEST(RunIfconfig, ReportsAStatusOrASignalAndRunsTheCommandOnce) {
  for (const auto& [status, failure] :
       {std::pair(0, ""),
        {0x0100, " exited with non-zero status 1"},
        {0x7f00, " exited with non-zero status 127"},
        {0xff00, " exited with non-zero status 255"},
        {-1, " exited with non-zero status 255"},  // system(3) itself failed
        {9, " killed with signal 9"},
        {0x8b, " killed with signal 11"},
        {64, " killed with signal 64"}}) {
    CannedMachine machine;
    machine.commandStatus = status;
    const std::string command = "/sbin/ifconfig 'eth0:1'  down \n";
    EXPECT_EQ(failureOf([] { runIfconfig("'eth0:1'  down \n"); }),
              *failure == '\0' ? "" : command + failure);
    EXPECT_EQ(machine.commands, std::vector{command});
  }
}

TEST(RunIfconfig, RunsTheCommandWithABlankAndNoArguments) {
  CannedMachine machine;
  runIfconfig("");
  EXPECT_EQ(machine.commands, std::vector<std::string>{"/sbin/ifconfig "});
}

}  // namespace
}  // namespace addrtool::testing
