// Several changes in one invocation: what comes first, and what is left when one of them fails.
#include <gtest/gtest.h>

#include <string>

#include "support/child_process.h"
#include "support/sandbox_machine.h"

namespace addrtool::testing {
namespace {

const std::string listing =
    "192.0.2.1 255.255.255.0 eth0 1\n"
    "192.0.2.10 255.255.255.0 eth0 0\n"
    "192.0.2.11 255.255.255.0 eth0 0\n"
    "2001:db8::1 64 eth0 0\n";

// With two aliases, numbers 1 and 2.
class ChangesInOrder : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_EQ(runAddrtool({"-a", "eth0", "192.0.2.10", "255.255.255.0"}), silentSuccess);
    ASSERT_EQ(runAddrtool({"-a", "eth0", "192.0.2.11", "255.255.255.0"}), silentSuccess);
  }
};

TEST_F(ChangesInOrder, ListBeforeTheyDelete) {
  EXPECT_EQ(runAddrtool({"-d", "192.0.2.10", "-l"}), (Outcome{0, 0, listing, ""}));
  EXPECT_EQ(kernelAddresses(),
            (Lines{"eth0 192.0.2.1/24", "eth0 2001:db8::1/64", "eth0:2 192.0.2.11/24"}));
}

TEST_F(ChangesInOrder, ListBeforeTheyAdd) {
  EXPECT_EQ(runAddrtool({"-a", "eth0", "192.0.2.12", "255.255.255.0", "-l"}),
            (Outcome{0, 0, listing, ""}));
  EXPECT_EQ(kernelAddresses().back(), "eth0:3 192.0.2.12/24");
}

// The added address takes the number that the deleted one had.
TEST_F(ChangesInOrder, DeleteBeforeTheyAdd) {
  EXPECT_EQ(runAddrtool({"-a", "eth0", "192.0.2.12", "255.255.255.0", "-d", "192.0.2.10"}),
            silentSuccess);
  EXPECT_EQ(kernelAddresses(), (Lines{"eth0 192.0.2.1/24", "eth0 2001:db8::1/64",
                                      "eth0:1 192.0.2.12/24", "eth0:2 192.0.2.11/24"}));
  EXPECT_EQ(valuesInShell("eth0:1", {"IPADDR"}), Lines{"192.0.2.12"});
}

TEST_F(ChangesInOrder, DeleteInTheOrderOfTheCommandLine) {
  const auto [outcome, commandLines] =
      traceCommandLines({"-d", "192.0.2.11", "--del", "192.0.2.10"});
  EXPECT_EQ(outcome, silentSuccess);
  EXPECT_EQ(commandLines, (Lines{"/sbin/ifconfig 'eth0:2' down", "/sbin/ifconfig 'eth0:1' down"}));
}

TEST_F(ChangesInOrder, AddOnTheLastNamedInterfaceAlone) {
  addInterface("eth1", {"198.51.100.1/24"});
  EXPECT_EQ(runAddrtool({"-a", "eth0", "-a", "eth1", "10.0.0.5", "255.255.255.0"}), silentSuccess);
  EXPECT_EQ(kernelAddresses(),
            (Lines{"eth0 192.0.2.1/24", "eth0 2001:db8::1/64", "eth0:1 192.0.2.10/24",
                   "eth0:2 192.0.2.11/24", "eth1 198.51.100.1/24", "eth1:1 10.0.0.5/24"}));
}

TEST_F(ChangesInOrder, HaveListedWhenADeleteFails) {
  const MachineState before;
  EXPECT_EQ(runAddrtool({"-d", "192.0.2.1", "-l"}),
            (Outcome{1, 0, listing, "192.0.2.1: cannot delete main IP on interface\n"}));
  EXPECT_EQ(MachineState(), before);
}

TEST_F(ChangesInOrder, StopAtAFailedDeleteAndKeepWhatIsDone) {
  EXPECT_EQ(runAddrtool({"-a", "eth0", "192.0.2.12", "255.255.255.0", "-d", "192.0.2.10", "-d",
                         "192.0.2.1", "-d", "192.0.2.11"}),
            (Outcome{1, 0, "", "192.0.2.1: cannot delete main IP on interface\n"}));
  EXPECT_EQ(kernelAddresses(),
            (Lines{"eth0 192.0.2.1/24", "eth0 2001:db8::1/64", "eth0:2 192.0.2.11/24"}));
  EXPECT_EQ(networkFiles().size(), 2U);
}

TEST_F(ChangesInOrder, KeepADeleteWhenTheAddFails) {
  EXPECT_EQ(runAddrtool({"-a", "eth9", "192.0.2.12", "255.255.255.0", "-d", "192.0.2.10"}),
            (Outcome{1, 0, "", "eth9: no such network interface.\n"}));
  EXPECT_EQ(kernelAddresses(),
            (Lines{"eth0 192.0.2.1/24", "eth0 2001:db8::1/64", "eth0:2 192.0.2.11/24"}));
}

TEST_F(ChangesInOrder, DoNothingWhenTheOperandsAreWrong) {
  const MachineState before;
  for (const Lines& operands : {Lines{"192.0.2.12"}, Lines{"192.0.2.12", "255.255.255.0", "x"}}) {
    Lines arguments{"-d", "192.0.2.10", "-l", "-a", "eth0"};
    arguments.insert(arguments.end(), operands.begin(), operands.end());
    const Outcome outcome = runAddrtool(arguments);
    EXPECT_EQ(outcome.exitStatus, 2);
    EXPECT_EQ(outcome.out, "");
  }
  EXPECT_EQ(MachineState(), before);
}

}  // namespace
}  // namespace addrtool::testing
