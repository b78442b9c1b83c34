// Programs that change addresses or system files refuse to run outside a sandbox. In case one does
// not, these tests run in a sandbox whose marks are hidden under a fresh /proc.
#include "support/sandbox_machine.h"

namespace addrtool::testing {
namespace {

const std::string root = ADDRTOOL_ROOT_DIR;

class SandboxGuard : public ::testing::Test {
 protected:
  void SetUp() override { prepare("mount --rbind /proc/.sandbox/proc /proc"); }
  void TearDown() override { prepare("umount --lazy /proc"); }
};

TEST_F(SandboxGuard, RefusesToRunOutsideASandbox) {
  const std::vector<Lines> programs{
      {"system_tests", "--gtest_filter=Inventory.*"},  // this very program
      {"/usr/bin/python3", root + "/tests/fault/concurrent_changes.py", "--rounds=1"},
      {"/usr/bin/python3", root + "/tests/fault/inject_faults.py", "--every=1000"},
      {"/usr/bin/python3", root + "/tests/fault/load.py", "--addresses=1"},
      {root + "/tests/packaging/completion_test", "--inside"},
      {root + "/tests/packaging/package_test", "--inside", "install_deb", "/nowhere"},
  };
  const MachineState before;
  for (const Lines& namespaces : {Lines{"env"}, Lines{"unshare", "--net", "--mount"}}) {
    for (const Lines& program : programs) {
      Lines command = namespaces;
      command.insert(command.end(), program.begin(), program.end());
      const Outcome outcome = runCommand(command);
      EXPECT_EQ(outcome.exitStatus, 1) << ::testing::PrintToString(command);
      EXPECT_EQ(outcome.out.find(" passed"), std::string::npos) << outcome.out;
      EXPECT_NE(outcome.err.find("only in a sandbox:\n"), std::string::npos) << outcome.err;
      EXPECT_NE(outcome.err.find("scripts/sandbox "), std::string::npos) << outcome.err;
    }
  }
  EXPECT_EQ(MachineState(), before);
}

TEST_F(SandboxGuard, ListsTheTestsAnywhere) {
  const Outcome outcome = runCommand({"system_tests", "--gtest_list_tests"});
  EXPECT_EQ(outcome.exitStatus, 0);
  EXPECT_NE(outcome.out.find("SandboxGuard.\n"), std::string::npos) << outcome.out;
}

}  // namespace
}  // namespace addrtool::testing
