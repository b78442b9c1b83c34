// With the first address of a subnet the kernel drops the others, because promote_secondaries is
// off by default. A delete restores those that are aliases.

#include "support/sandbox_machine.h"

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

TEST(RestoreAliases, RestoresVanishedAliasesInTextOrderOfTheSuffix) {
  addAliases(10);
  MachineState expected;
  std::erase(expected.addresses, "eth0:1 198.51.100.1/24");
  expected.files.erase("ifcfg-eth0:1");
  Lines commandLines{"/sbin/ifconfig 'eth0:1' down", upCommand(10)};
  for (int number = 2; number <= 9; ++number) commandLines.push_back(upCommand(number));
  expectCommandLines({"-d", "198.51.100.1"}, commandLines);
  EXPECT_EQ(MachineState(), expected);
}

TEST(RestoreAliases, RunsNoCommandIfNoAliasVanished) {
  addAliases(10);
  expectCommandLines({"-d", "198.51.100.5"}, {"/sbin/ifconfig 'eth0:5' down"});
}

TEST(RestoreAliases, RestoresOnlyVanishedAliasesAndWritesNoFile) {
  addAlias("eth0:1", "198.51.100.1/24");
  addAlias("eth0:2", "198.51.100.2/24");
  addAlias("eth0:3", "203.0.113.3/24");
  addAlias("eth0:4", "192.0.2.4/24");
  addAlias("eth0:web:1", "198.51.100.5/24");
  const NetworkFiles files = networkFiles();
  expectCommandLines({"-d", "198.51.100.1"},
                     {"/sbin/ifconfig 'eth0:1' down", upCommand(2),
                      "/sbin/ifconfig 'eth0:web:1' '198.51.100.5' netmask  '255.255.255.0' up"});
  EXPECT_EQ(kernelAddresses(),
            withFreshAddresses({"eth0:2 198.51.100.2/24", "eth0:3 203.0.113.3/24",
                                "eth0:4 192.0.2.4/24", "eth0:web:1 198.51.100.5/24"}));
  EXPECT_EQ(networkFiles(), files);
}

TEST(RestoreAliases, RestoresALabelThatOnlyAHostScopeAddressHas) {
  addAliases(2);
  addAlias("eth0:2", "10.0.0.1/32 scope host");
  expectCommandLines({"-d", "198.51.100.1"}, {"/sbin/ifconfig 'eth0:1' down", upCommand(2)});
}

TEST(RestoreAliases, RestoresPrefixLengthsEvenIfNoAddressIsLeft) {
  addInterface("eth1", {});
  addAlias("eth1:1", "203.0.113.1/30");
  addAlias("eth1:2", "203.0.113.2/30");
  EXPECT_EQ(runAddrtool({"-d", "203.0.113.1"}), silentSuccess);
  EXPECT_EQ(kernelAddresses(), withFreshAddresses({"eth1:2 203.0.113.2/30"}));
}

TEST(RestoreAliases, DoesNotRestoreAMainAddress) {
  addAlias("eth0:1", "198.51.100.1/24");
  ip("address add 198.51.100.2/24 dev eth0");
  addAlias("eth0:3", "198.51.100.3/24");
  EXPECT_EQ(runAddrtool({"-d", "198.51.100.1"}), silentSuccess);
  EXPECT_EQ(kernelAddresses(), withFreshAddresses({"eth0:3 198.51.100.3/24"}));
}

TEST(RestoreAliases, DoesNotRestoreALabelThatHasAnotherAddress) {
  addAliases(2);
  recordIfconfig(
      "ip address del 198.51.100.1/24 dev eth0; "
      "ip address add 203.0.113.9/24 dev eth0 label eth0:2");
  EXPECT_EQ(runAddrtool({"-d", "198.51.100.1"}), silentSuccess);
  EXPECT_EQ(recordedCommands(), (std::vector<Lines>{{"/sbin/ifconfig", "eth0:1", "down"}}));
}

TEST(RestoreAliases, DoesNotRestoreTheDeletedAlias) {
  addAliases(2);
  recordIfconfig("ip address flush dev eth0 label 'eth0:*'; exit 0");
  EXPECT_EQ(runAddrtool({"-d", "198.51.100.2"}), silentSuccess);
  EXPECT_EQ(recordedCommands(), (std::vector<Lines>{{"/sbin/ifconfig", "eth0:2", "down"},
                                                    {"/sbin/ifconfig", "eth0:1", "198.51.100.1",
                                                     "netmask", "255.255.255.0", "up"}}));
}

// The deleted alias and its file stay deleted.
void expectFailureAfterDelete(const Outcome& outcome, const std::string& message,
                              NetworkFiles filesBefore) {
  EXPECT_EQ(outcome, failure(message));
  filesBefore.erase("ifcfg-eth0:1");
  EXPECT_EQ(networkFiles(), filesBefore);
  EXPECT_EQ(kernelAddresses(), withFreshAddresses({}));
}

TEST(RestoreAliases, StopsAtTheFirstFailure) {
  addAliases(10);
  const NetworkFiles files = networkFiles();
  recordIfconfig("[ \"$2\" = down ] || exit 1; ip address del 198.51.100.1/24 dev eth0");
  expectFailureAfterDelete(runAddrtool({"-d", "198.51.100.1"}),
                           upCommand(10) + " exited with non-zero status 1", files);
  EXPECT_EQ(recordedCommands().size(), 2U);
}

TEST(RestoreAliases, ReportsThatTheKernelCannotBeAskedAgain) {
  addAliases(10);
  const NetworkFiles files = networkFiles();
  const Trace trace = traceCommand({"-e", "inject=sendto:error=ENOBUFS:when=2"},
                                   {"addrtool", "-d", "198.51.100.1"});
  expectFailureAfterDelete(trace.outcome,
                           "Can not send RTM_GETADDR request: No buffer space available", files);
}

}  // namespace
}  // namespace addrtool::testing
