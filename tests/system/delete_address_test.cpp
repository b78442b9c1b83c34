// What --del does to the running system and to the files, and what it refuses.
#include <sys/stat.h>
#include <unistd.h>

#include "support/sandbox_machine.h"

namespace addrtool::testing {
namespace {

TEST(DeleteAddress, LeavesEveryOtherAddressAndFile) {
  struct Row {
    std::string rule;
    Lines before;
    std::string deleted;
    Lines after;
  };
  const std::vector<Row> rows{
      {"an alias without a file", {"eth0:web 192.0.2.10/24"}, "192.0.2.10", {}},
      {"of two interfaces, the first by name loses its alias",
       {"eth1 203.0.113.7/24", "eth0:1 203.0.113.7/24"},
       "203.0.113.7",
       {"eth1 203.0.113.7/24"}},
      {"of two interfaces, the first by name loses its IPv6 address",
       {"eth1 2001:db8:1::1/64", "eth1 2001:db8::5/64", "eth0 2001:db8::5/64"},
       "2001:db8::5",
       {"eth1 2001:db8:1::1/64", "eth1 2001:db8::5/64"}},
      {"a vanished alias gets its prefix length, even if no address is left",
       {"eth1:1 203.0.113.1/30", "eth1:2 203.0.113.2/30"},
       "203.0.113.1",
       {"eth1:2 203.0.113.2/30"}},
      {"a vanished main address is not restored",
       {"eth0:1 198.51.100.1/24", "eth0 198.51.100.2/24", "eth0:3 198.51.100.3/24"},
       "198.51.100.1",
       {"eth0:3 198.51.100.3/24"}},
  };
  for (const auto& [rule, before, deleted, after] : rows) {
    SCOPED_TRACE(rule);
    resetMachine();
    addInterface("eth1", {});
    addAddresses(before);
    const NetworkFiles files = networkFiles();
    expectSilentSuccess({"-d", deleted});
    expectAdded(after);
    EXPECT_EQ(networkFiles(), files);
  }
}

// --- IPv4 --------------------------------------------------------------------

TEST(DeleteAddress, RemovesOnlyAnAliasAndItsFile) {
  add("192.0.2.10");
  add("198.51.100.1");
  MachineState expected;
  expected.files.erase("ifcfg-eth0:1");
  std::erase(expected.addresses, "eth0:1 192.0.2.10/24");
  expectSilentSuccess({"--del", "192.0.2.10"});
  EXPECT_EQ(MachineState(), expected);
}

TEST(DeleteAddress, RefusesEveryMainAddressEvenIfItIsAnAliasToo) {
  addInterface("eth1", {"203.0.113.7/24"});
  addAddresses(
      {"eth0 192.0.2.2/24", "eth0 10.0.0.1/8", "eth0:1 10.0.0.1/16", "eth1:1 192.0.2.1/24"});
  for (const std::string address : {"192.0.2.1", "192.0.2.2", "10.0.0.1", "203.0.113.7"}) {
    expectRefused({"-d", address}, address + ": cannot delete main IP on interface");
  }
}

TEST(DeleteAddress, FindsOnlyManagedIPv4Addresses) {
  add("10.0.0.1");
  for (const std::string address : {"127.0.0.1", "192.0.2.99", "10.0.0.01", "10.0.0.1 ", "10.0.1",
                                    "10.0.0.1/24", "10.0.0.", "eth0", ""}) {
    expectRefused({"-d", address}, address + ": not configured.");
  }
}

TEST(DeleteAddress, RemovesTheFirstAliasInTextOrderOfTheSuffix) {
  addAddresses({"eth0:2 203.0.113.7/24", "eth0:10 203.0.113.7/32"});
  expectCommandLines({"-d", "203.0.113.7"}, {"/sbin/ifconfig 'eth0:10' down"});
}

// --- IPv6 --------------------------------------------------------------------

TEST(DeleteAddress, RemovesIPv6InAnySpellingFromKernelAndFile) {
  ASSERT_EQ(chown(interfaceFile("eth0").c_str(), 12, 34), 0);
  ASSERT_EQ(chmod(interfaceFile("eth0").c_str(), 01755), 0);
  const MachineState before;
  EXPECT_EQ(before.files.at("ifcfg-eth0").mode, 0101755U);
  const Lines spellings{"2001:db8::5", "2001:DB8:0:0::5", "2001:db8::0.0.0.5",
                        "2001:0db8:0000:0000:0000:0000:0000:0005"};
  for (const std::string& added : spellings) {
    for (const std::string& deleted : spellings) {
      add(added, "64");
      expectSilentSuccess({"-d", deleted});
      EXPECT_EQ(MachineState(), before) << added << ", deleted as " << deleted;
    }
  }
}

TEST(DeleteAddress, PromotesTheFirstListedIPv6Address) {
  add("2001:db8::5", "64");
  add("2001:db8::6", "64");
  expectSilentSuccess({"-d", "2001:db8::1"});
  EXPECT_EQ(kernelAddresses(),
            (Lines{"eth0 192.0.2.1/24", "eth0 2001:db8::5/64", "eth0 2001:db8::6/64"}));
  EXPECT_EQ(valuesInShell("eth0", {"IPV6ADDR", "IPV6ADDR_SECONDARIES"}),
            (Lines{"2001:db8::6/64", "2001:db8::5/0"}));
}

// Required: the closing quote of the list counts as part of its last entry.
TEST(DeleteAddress, PromotesTheOnlyListedIPv6AddressWithoutItsPrefixLength) {
  NetworkFiles files = networkFiles();
  add("2001:db8::5", "64");
  expectSilentSuccess({"-d", "2001:db8::1"});
  std::string& contents = files["ifcfg-eth0"].contents;
  contents.replace(contents.find("2001:db8::1/64"), std::string::npos, "2001:db8::5/0\n");
  EXPECT_EQ(networkFiles(), files);
}

// The search stops at the first interface, although eth1 could give the address up.
TEST(DeleteAddress, RefusesTheLastIPv6AddressOfAnInterfaceEvenIfAnotherHasIt) {
  add("192.0.2.10");
  ASSERT_NE(runShell("ip -6 address show dev eth0 scope link").out, "");
  for (const bool another : {false, true}) {
    if (another) addInterface("eth1", {"2001:db8:1::1/64", "2001:db8::1/64"});
    for (const std::string address : {"2001:db8::1", "2001:DB8:0::1"}) {
      expectRefused({"-d", address}, address + ": cannot remove last address from eth0");
    }
  }
}

TEST(DeleteAddress, FindsOnlyManagedIPv6Addresses) {
  addAddresses({"eth0 fe80::1/64"});
  add("2001:db8::5", "64");
  for (const std::string address : {"fe80::1", "::1", "2001:db8::99", "2001:db8::5/64", ":",
                                    "2001:db8:::5", "2001:db8::5 ", "192.0.2.1:"}) {
    expectRefused({"-d", address}, address + ": not configured");
  }
}

// Expects a change of the kernel, no new file for eth0, and this message on both streams.
void expectFileIsKept(const Lines& arguments, const std::string& message) {
  const auto inode = [] {
    struct stat status {};
    EXPECT_EQ(stat(interfaceFile("eth0").c_str(), &status), 0);
    return status.st_ino;
  };
  const NetworkFiles files = networkFiles();
  const ino_t before = inode();
  const Outcome outcome = runAddrtool(arguments);
  EXPECT_EQ(outcome.exitStatus, 0);
  EXPECT_TRUE(outcome.err.starts_with(message + '\n')) << outcome.err;
  EXPECT_EQ(outcome.out, outcome.err);
  EXPECT_EQ(networkFiles(), files);
  EXPECT_EQ(inode(), before);
}

TEST(DeleteAddress, ReportsTheTypedTextIfTheAddressIsTheLastInTheFile) {
  addAddresses({"eth0 2001:db8::5/64"});
  expectFileIsKept({"-d", "2001:DB8:0::1"}, "Cannot remove last IPv6 address 2001:DB8:0::1");
  EXPECT_EQ(kernelAddresses(), (Lines{"eth0 192.0.2.1/24", "eth0 2001:db8::5/64"}));
}

TEST(ChangeIPv6, ReportsAMalformedListAndKeepsIt) {
  add("2001:db8::5", "64");
  prepare("echo IPV6ADDR_SECONDARIES=2001:db8::6 >>" + interfaceFile("eth0").string());
  const std::string message = "2001:db8::6: cannot parse IPv6 address";
  expectFileIsKept({"-d", "2001:db8::5"}, message);
  expectAdded({});
  expectFileIsKept({"-a", "eth0", "2001:db8::7", "64"}, message);
  expectAdded({"eth0 2001:db8::7/64"});
}

TEST(ChangeIPv6, ATypedPrefixInTheAddressMakesTheListMalformed) {
  add("2001:db8::6/64", "48");
  expectAdded({"eth0 2001:db8::6/64"});
  expectFileIsKept({"-d", "2001:db8::6"}, "2001:db8::6/64/48\": cannot parse IPv6 address");
  expectAdded({});
}

// --- restoring aliases ---------------------------------------------------------
// With the first address of a subnet the kernel drops the others, because promote_secondaries is
// off by default. A delete restores those that are aliases.

// Aliases 1 to `count` of eth0 in 198.51.100.0/24, with their files.
void addAliases(int count) {
  for (int number = 1; number <= count; ++number) add("198.51.100." + std::to_string(number));
}

std::string upCommand(const std::string& suffix, const std::string& address) {
  return "/sbin/ifconfig 'eth0:" + suffix + "' '" + address + "' netmask  '255.255.255.0' up";
}

std::string upCommand(int number) {
  return upCommand(std::to_string(number), "198.51.100." + std::to_string(number));
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

TEST(RestoreAliases, RestoresOnlyVanishedAliasesAndWritesNoFile) {
  addAddresses({"eth0:1 198.51.100.1/24", "eth0:2 198.51.100.2/24", "eth0:3 203.0.113.3/24",
                "eth0:4 192.0.2.4/24", "eth0:web:1 198.51.100.5/24"});
  const NetworkFiles files = networkFiles();
  expectCommandLines({"-d", "198.51.100.1"}, {"/sbin/ifconfig 'eth0:1' down", upCommand(2),
                                              upCommand("web:1", "198.51.100.5")});
  expectAdded({"eth0:2 198.51.100.2/24", "eth0:3 203.0.113.3/24", "eth0:4 192.0.2.4/24",
               "eth0:web:1 198.51.100.5/24"});
  EXPECT_EQ(networkFiles(), files);
}

TEST(RestoreAliases, RestoresALabelThatOnlyAHostScopeAddressHas) {
  addAliases(2);
  addAddresses({"eth0:2 10.0.0.1/32 scope host"});
  expectCommandLines({"-d", "198.51.100.1"}, {"/sbin/ifconfig 'eth0:1' down", upCommand(2)});
}

TEST(RestoreAliases, DoesNotRestoreALabelThatHasAnotherAddress) {
  addAliases(2);
  recordIfconfig(
      "ip address del 198.51.100.1/24 dev eth0; "
      "ip address add 203.0.113.9/24 dev eth0 label eth0:2");
  expectSilentSuccess({"-d", "198.51.100.1"});
  EXPECT_EQ(recordedCommands(), Lines{"</sbin/ifconfig><eth0:1><down>"});
}

TEST(RestoreAliases, DoesNotRestoreTheDeletedAlias) {
  addAliases(2);
  recordIfconfig("ip address flush dev eth0 label 'eth0:*'; exit 0");
  expectSilentSuccess({"-d", "198.51.100.2"});
  EXPECT_EQ(recordedCommands(),
            (Lines{"</sbin/ifconfig><eth0:2><down>",
                   "</sbin/ifconfig><eth0:1><198.51.100.1><netmask><255.255.255.0><up>"}));
}

// The deleted alias and its file stay deleted.
void expectFailureAfterDelete(const Outcome& outcome, const std::string& message,
                              NetworkFiles filesBefore) {
  EXPECT_EQ(outcome, failure(message));
  filesBefore.erase("ifcfg-eth0:1");
  EXPECT_EQ(networkFiles(), filesBefore);
  expectAdded({});
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
  const Trace trace =
      traceCommand({"inject=sendto:error=ENOBUFS:when=2"}, {"addrtool", "-d", "198.51.100.1"});
  expectFailureAfterDelete(trace.outcome,
                           "Can not send RTM_GETADDR request: No buffer space available", files);
}

}  // namespace
}  // namespace addrtool::testing
