// What --del does to the running system and to the files, and what it refuses.
#include <sys/stat.h>
#include <unistd.h>

#include "support/sandbox_machine.h"

namespace addrtool::testing {
namespace {

void add(const std::string& address, const std::string& netmaskOrPrefix) {
  ASSERT_EQ(runAddrtool({"-a", "eth0", address, netmaskOrPrefix}), silentSuccess);
}

// --- IPv4 --------------------------------------------------------------------

TEST(DeleteAddress, RemovesAnAliasAndItsFile) {
  add("192.0.2.10", "255.255.255.0");
  const MachineState before;
  add("192.0.2.11", "255.255.255.0");
  EXPECT_EQ(runAddrtool({"--del", "192.0.2.11"}), silentSuccess);
  EXPECT_EQ(MachineState(), before);
}

TEST(DeleteAddress, KeepsTheFilesOfOtherAliases) {
  add("192.0.2.10", "255.255.255.0");
  add("198.51.100.1", "255.255.255.0");
  NetworkFiles files = networkFiles();
  EXPECT_EQ(runAddrtool({"-d", "192.0.2.10"}), silentSuccess);
  files.erase("ifcfg-eth0:1");
  EXPECT_EQ(networkFiles(), files);
  EXPECT_EQ(kernelAddresses(), withFreshAddresses({"eth0:2 198.51.100.1/24"}));
}

TEST(DeleteAddress, IgnoresAMissingAliasFile) {
  const MachineState before;
  addAlias("eth0:web", "192.0.2.10/24");
  EXPECT_EQ(runAddrtool({"-d", "192.0.2.10"}), silentSuccess);
  EXPECT_EQ(MachineState(), before);
}

TEST(DeleteAddress, RefusesEveryMainAddressEvenIfItIsAnAliasElsewhere) {
  ip("address add 192.0.2.2/24 dev eth0\naddress add 10.0.0.1/8 dev eth0");
  addInterface("eth1", {"203.0.113.7/24"});
  addAlias("eth1:1", "192.0.2.1/24");
  for (const std::string address : {"192.0.2.1", "192.0.2.2", "10.0.0.1", "203.0.113.7"}) {
    expectRefused({"-d", address}, address + ": cannot delete main IP on interface");
  }
}

TEST(DeleteAddress, FindsOnlyManagedIPv4Addresses) {
  add("10.0.0.1", "255.255.255.0");
  for (const std::string address : {"127.0.0.1", "192.0.2.99", "10.0.0.01", "10.0.0.1 ", "10.0.1",
                                    "10.0.0.1/24", "10.0.0.", "eth0", ""}) {
    expectRefused({"-d", address}, address + ": not configured.");
  }
}

TEST(DeleteAddress, RemovesTheAliasFromTheFirstInterfaceByName) {
  addInterface("eth1", {"203.0.113.7/24"});
  addAlias("eth0:1", "203.0.113.7/24");
  EXPECT_EQ(runAddrtool({"-d", "203.0.113.7"}), silentSuccess);
  EXPECT_EQ(kernelAddresses(), withFreshAddresses({"eth1 203.0.113.7/24"}));
  expectRefused({"-d", "203.0.113.7"}, "203.0.113.7: cannot delete main IP on interface");
}

TEST(DeleteAddress, RemovesTheFirstAliasInTextOrderOfTheSuffix) {
  addAlias("eth0:2", "203.0.113.7/24");
  addAlias("eth0:10", "203.0.113.7/32");
  expectCommandLines({"-d", "203.0.113.7"}, {"/sbin/ifconfig 'eth0:10' down"});
}

TEST(DeleteAddress, KeepsTheFilesWhenTheCommandFails) {
  add("192.0.2.10", "255.255.255.0");
  add("192.0.2.11", "255.255.255.0");
  add("2001:db8::5", "64");
  recordIfconfig("exit 1");
  expectRefused({"-d", "192.0.2.10"}, "/sbin/ifconfig 'eth0:1' down exited with non-zero status 1");
  expectRefused({"-d", "2001:DB8::5"},
                "/sbin/ifconfig eth0 del 2001:db8::5/64 exited with non-zero status 1");
  EXPECT_EQ(recordedCommands(),
            (std::vector<Lines>{{"/sbin/ifconfig", "eth0:1", "down"},
                                {"/sbin/ifconfig", "eth0", "del", "2001:db8::5/64"}}));
}

TEST(DeleteAddress, ReadsTheKernelAgainOnlyWhenAnotherAliasMayHaveVanished) {
  add("192.0.2.10", "255.255.255.0");
  add("192.0.2.11", "255.255.255.0");
  for (const auto& [address, reads] : {std::pair("192.0.2.10", 2U), std::pair("192.0.2.11", 1U)}) {
    const auto [outcome, calls] = traceCommand({"-e", "trace=sendto"}, {"addrtool", "-d", address});
    EXPECT_EQ(outcome, silentSuccess);
    EXPECT_EQ(callsStarting("sendto(", calls).size(), reads);
  }
}

TEST(DeleteAddress, ReportsThatTheKernelCannotBeAsked) {
  add("192.0.2.10", "255.255.255.0");
  for (const char* address : {"192.0.2.10", "2001:db8::1"}) {
    expectRefusedWith("inject=sendto:error=ENOBUFS", {"-d", address},
                      "Can not send RTM_GETADDR request: No buffer space available");
  }
}

// --- IPv6 --------------------------------------------------------------------

TEST(DeleteAddress, RemovesIPv6InAnySpellingFromKernelAndFile) {
  const MachineState before;
  for (const auto& [added, deleted] : std::vector<std::pair<std::string, std::string>>{
           {"2001:db8::5", "2001:db8::5"},
           {"2001:db8::5", "2001:DB8:0:0::5"},
           {"2001:db8::5", "2001:0db8:0000:0000:0000:0000:0000:0005"},
           {"2001:db8::5", "2001:db8::0.0.0.5"},
           {"2001:DB8:0:0::5", "2001:db8::5"}}) {
    add(added, "64");
    EXPECT_EQ(runAddrtool({"-d", deleted}), silentSuccess) << deleted;
    EXPECT_EQ(MachineState(), before) << deleted;
  }
}

TEST(DeleteAddress, KeepsOwnerAndModeOfTheInterfaceFile) {
  const std::string file = interfaceFile("eth0");
  ASSERT_EQ(chown(file.c_str(), 12, 34), 0);
  ASSERT_EQ(chmod(file.c_str(), 01755), 0);
  const MachineState before;
  add("2001:db8::5", "64");
  EXPECT_EQ(runAddrtool({"-d", "2001:db8::5"}), silentSuccess);
  EXPECT_EQ(MachineState(), before);
  EXPECT_EQ(before.files.at("ifcfg-eth0").mode, 0101755U);
}

TEST(DeleteAddress, PromotesTheFirstListedIPv6Address) {
  add("2001:db8::5", "64");
  add("2001:db8::6", "64");
  EXPECT_EQ(runAddrtool({"-d", "2001:db8::1"}), silentSuccess);
  EXPECT_EQ(kernelAddresses(),
            (Lines{"eth0 192.0.2.1/24", "eth0 2001:db8::5/64", "eth0 2001:db8::6/64"}));
  EXPECT_EQ(valuesInShell("eth0", {"IPV6ADDR", "IPV6ADDR_SECONDARIES"}),
            (Lines{"2001:db8::6/64", "2001:db8::5/0"}));
}

// Required: the closing quote of the list counts as part of its last entry.
TEST(DeleteAddress, PromotesTheOnlyListedIPv6AddressWithoutItsPrefixLength) {
  NetworkFiles files = networkFiles();
  add("2001:db8::5", "64");
  EXPECT_EQ(runAddrtool({"-d", "2001:db8::1"}), silentSuccess);
  std::string& contents = files["ifcfg-eth0"].contents;
  contents.replace(contents.find("2001:db8::1/64"), std::string::npos, "2001:db8::5/0\n");
  EXPECT_EQ(networkFiles(), files);
}

TEST(DeleteAddress, RefusesTheLastIPv6AddressOfAnInterface) {
  add("192.0.2.10", "255.255.255.0");
  ASSERT_NE(runShell("ip -6 address show dev eth0 scope link").out, "");
  expectRefused({"-d", "2001:db8::1"}, "2001:db8::1: cannot remove last address from eth0");
  expectRefused({"-d", "2001:DB8:0::1"}, "2001:DB8:0::1: cannot remove last address from eth0");
}

TEST(DeleteAddress, FindsOnlyManagedIPv6Addresses) {
  ip("address add fe80::1/64 dev eth0");
  add("2001:db8::5", "64");
  for (const std::string address : {"fe80::1", "::1", "2001:db8::99", "2001:db8::5/64", ":",
                                    "2001:db8:::5", "2001:db8::5 ", "192.0.2.1:"}) {
    expectRefused({"-d", address}, address + ": not configured");
  }
}

TEST(DeleteAddress, RemovesIPv6FromTheFirstInterfaceByName) {
  addInterface("eth1", {"2001:db8:1::1/64", "2001:db8::5/64"});
  add("2001:db8::5", "64");
  EXPECT_EQ(runAddrtool({"-d", "2001:db8::5"}), silentSuccess);
  EXPECT_EQ(kernelAddresses(),
            withFreshAddresses({"eth1 2001:db8:1::1/64", "eth1 2001:db8::5/64"}));
}

// The search stops at the first interface, although eth1 has other addresses.
TEST(DeleteAddress, RefusesALastIPv6AddressEvenIfAnotherInterfaceHasIt) {
  addInterface("eth1", {"2001:db8:1::1/64", "2001:db8::1/64"});
  expectRefused({"-d", "2001:db8::1"}, "2001:db8::1: cannot remove last address from eth0");
}

// Expects that the kernel is changed, that the file of eth0 is not even replaced, and that a
// message on both streams says why.
void expectFileIsKept(const Lines& arguments, const std::string& message, const Lines& addresses) {
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
  EXPECT_EQ(kernelAddresses(), addresses);
  EXPECT_EQ(networkFiles(), files);
  EXPECT_EQ(inode(), before);
}

TEST(DeleteAddress, ReportsTheTypedTextIfTheAddressIsTheLastInTheFile) {
  ip("address add 2001:db8::5/64 dev eth0");
  expectFileIsKept({"-d", "2001:DB8:0::1"}, "Cannot remove last IPv6 address 2001:DB8:0::1",
                   {"eth0 192.0.2.1/24", "eth0 2001:db8::5/64"});
}

TEST(ChangeIPv6, ReportsAMalformedListAndKeepsIt) {
  add("2001:db8::5", "64");
  prepare("echo IPV6ADDR_SECONDARIES=2001:db8::6 >>" + interfaceFile("eth0").string());
  const std::string message = "2001:db8::6: cannot parse IPv6 address";
  expectFileIsKept({"-d", "2001:db8::5"}, message, withFreshAddresses({}));
  expectFileIsKept({"-a", "eth0", "2001:db8::7", "64"}, message,
                   withFreshAddresses({"eth0 2001:db8::7/64"}));
}

}  // namespace
}  // namespace addrtool::testing
