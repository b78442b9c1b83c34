// With the first address of a subnet the kernel drops the others (promote_secondaries is off, as
// it is by default). A delete brings back those that are aliases.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/addresses.h"
#include "support/child_process.h"
#include "support/sandbox_machine.h"
#include "support/system_calls.h"

namespace addrtool::testing {
namespace {

// Aliases 1 to `count` of eth0 in 198.51.100.0/24, with their files.
void addAliases(int count) {
  for (int number = 1; number <= count; ++number) {
    ASSERT_EQ(runAddrtool({"-a", "eth0", "198.51.100." + std::to_string(number), "255.255.255.0"}),
              silentSuccess);
  }
}

std::string upCommand(int number) {
  const std::string text = std::to_string(number);
  return "/sbin/ifconfig 'eth0:" + text + "' '198.51.100." + text + "' netmask  '255.255.255.0' up";
}

Lines without(const std::string& line, Lines lines) {
  std::erase(lines, line);
  return lines;
}

TEST(RestoreAliases, BringsBackWhatVanishedWithTheFirstOfASubnet) {
  addAliases(10);
  MachineState expected;
  expected.addresses = without("eth0:1 198.51.100.1/24", expected.addresses);
  expected.files.erase("ifcfg-eth0:1");
  EXPECT_EQ(runAddrtool({"-d", "198.51.100.1"}), silentSuccess);
  EXPECT_EQ(MachineState(), expected);
}

TEST(RestoreAliases, RunsOneCommandForEachInTextOrderOfTheSuffix) {
  addAliases(10);
  const auto [outcome, commandLines] = traceCommandLines({"-d", "198.51.100.1"});
  EXPECT_EQ(outcome, silentSuccess);
  Lines expected{"/sbin/ifconfig 'eth0:1' down", upCommand(10)};
  for (int number = 2; number <= 9; ++number) expected.push_back(upCommand(number));
  EXPECT_EQ(commandLines, expected);
}

TEST(RestoreAliases, RunsNothingWhenAllAreStillThere) {
  addAliases(10);
  const auto [outcome, commandLines] = traceCommandLines({"-d", "198.51.100.5"});
  EXPECT_EQ(outcome, silentSuccess);
  EXPECT_EQ(commandLines, Lines{"/sbin/ifconfig 'eth0:5' down"});
}

TEST(RestoreAliases, TouchesOnlyWhatVanishedAndWritesNoFile) {
  addAlias("eth0:1", "198.51.100.1/24");
  addAlias("eth0:2", "198.51.100.2/24");
  addAlias("eth0:3", "203.0.113.3/24");
  addAlias("eth0:4", "192.0.2.4/24");
  addAlias("eth0:web:1", "198.51.100.5/24");
  const NetworkFiles files = networkFiles();
  const auto [outcome, commandLines] = traceCommandLines({"-d", "198.51.100.1"});
  EXPECT_EQ(outcome, silentSuccess);
  EXPECT_EQ(commandLines,
            (Lines{"/sbin/ifconfig 'eth0:1' down", upCommand(2),
                   "/sbin/ifconfig 'eth0:web:1' '198.51.100.5' netmask  '255.255.255.0' up"}));
  EXPECT_EQ(kernelAddresses(),
            (Lines{"eth0 192.0.2.1/24", "eth0 2001:db8::1/64", "eth0:2 198.51.100.2/24",
                   "eth0:3 203.0.113.3/24", "eth0:4 192.0.2.4/24", "eth0:web:1 198.51.100.5/24"}));
  EXPECT_EQ(networkFiles(), files);
}

TEST(RestoreAliases, KeepsEachPrefixLength) {
  addAlias("eth0:1", "10.0.0.1/30");
  addAlias("eth0:2", "10.0.0.2/30");
  EXPECT_EQ(runAddrtool({"-d", "10.0.0.1"}), silentSuccess);
  EXPECT_EQ(kernelAddresses().back(), "eth0:2 10.0.0.2/30");
}

TEST(RestoreAliases, WorksOnAnInterfaceThatHasLostAllItsAddresses) {
  addInterface("eth1", {});
  addAlias("eth1:1", "203.0.113.1/24");
  addAlias("eth1:2", "203.0.113.2/24");
  EXPECT_EQ(runAddrtool({"-d", "203.0.113.1"}), silentSuccess);
  EXPECT_EQ(kernelAddresses(),
            (Lines{"eth0 192.0.2.1/24", "eth0 2001:db8::1/64", "eth1:2 203.0.113.2/24"}));
}

// Only aliases are brought back.
TEST(RestoreAliases, LosesAMainAddressThatVanished) {
  addAlias("eth0:1", "198.51.100.1/24");
  ip("address add 198.51.100.2/24 dev eth0");
  addAlias("eth0:3", "198.51.100.3/24");
  EXPECT_EQ(runAddrtool({"-d", "198.51.100.1"}), silentSuccess);
  EXPECT_EQ(kernelAddresses(),
            (Lines{"eth0 192.0.2.1/24", "eth0 2001:db8::1/64", "eth0:3 198.51.100.3/24"}));
}

TEST(RestoreAliases, TakesALabelWithAnotherAddressForPresent) {
  addAliases(2);
  recordIfconfig(
      "ip address del 198.51.100.1/24 dev eth0; "
      "ip address add 203.0.113.9/24 dev eth0 label eth0:2");
  EXPECT_EQ(runAddrtool({"-d", "198.51.100.1"}), silentSuccess);
  EXPECT_EQ(recordedCommands(), (std::vector<Lines>{{"/sbin/ifconfig", "eth0:1", "down"}}));
}

// Nor does it come back itself when it is still there, or went without a trace.
TEST(RestoreAliases, NeverBringsBackWhatWasDeleted) {
  addAliases(2);
  recordIfconfig("ip address flush dev eth0 label 'eth0:*'; exit 0");
  EXPECT_EQ(runAddrtool({"-d", "198.51.100.2"}), silentSuccess);
  EXPECT_EQ(recordedCommands(), (std::vector<Lines>{{"/sbin/ifconfig", "eth0:2", "down"},
                                                    {"/sbin/ifconfig", "eth0:1", "198.51.100.1",
                                                     "netmask", "255.255.255.0", "up"}}));
}

TEST(RestoreAliases, StopsAtTheFirstFailure) {
  addAliases(10);
  NetworkFiles files = networkFiles();
  recordIfconfig("[ \"$2\" = down ] || exit 1; ip address del 198.51.100.1/24 dev eth0");
  EXPECT_EQ(runAddrtool({"-d", "198.51.100.1"}),
            (Outcome{1, 0, "", upCommand(10) + " exited with non-zero status 1\n"}));
  EXPECT_EQ(recordedCommands().size(), 2U);
  files.erase("ifcfg-eth0:1");  // stays deleted, as the alias does
  EXPECT_EQ(networkFiles(), files);
  EXPECT_EQ(kernelAddresses(), (Lines{"eth0 192.0.2.1/24", "eth0 2001:db8::1/64"}));
}

TEST(RestoreAliases, PassesOnThatTheKernelCannotBeAskedAgain) {
  addAliases(10);
  NetworkFiles files = networkFiles();
  const auto [outcome, calls] = traceCommand({"-e", "inject=sendto:error=ENOBUFS:when=2"},
                                             {"addrtool", "-d", "198.51.100.1"});
  EXPECT_EQ(outcome,
            (Outcome{1, 0, "", "Can not send RTM_GETADDR request: No buffer space available\n"}));
  files.erase("ifcfg-eth0:1");
  EXPECT_EQ(networkFiles(), files);
  EXPECT_EQ(kernelAddresses(), (Lines{"eth0 192.0.2.1/24", "eth0 2001:db8::1/64"}));
}

}  // namespace
}  // namespace addrtool::testing
