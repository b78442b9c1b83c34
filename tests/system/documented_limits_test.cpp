// What docs/changes.md and the manual page say about operands that nobody checks, about odd places
// for an address, and about the environment.

#include <ostream>

#include "support/sandbox_machine.h"

namespace addrtool::testing {
namespace {

// --- operands that are not checked ---------------------------------------------

struct UncheckedAddress {
  std::string typed;
  std::string added;  // as kernelAddresses() shows it; empty if the program cannot see it
};

void PrintTo(const UncheckedAddress& address, std::ostream* stream) {
  *stream << address.typed;
}

class UncheckedIPv4 : public ::testing::TestWithParam<UncheckedAddress> {};

TEST_P(UncheckedIPv4, IsAddedAsIfconfigReadsItAndSavedAsTyped) {
  const auto& [typed, added] = GetParam();
  EXPECT_EQ(runAddrtool({"-a", "eth0", typed, "255.255.255.0"}), silentSuccess);
  EXPECT_EQ(kernelAddresses(), withFreshAddresses(added.empty() ? Lines{} : Lines{added}));
  EXPECT_EQ(readFile(interfaceFile("eth0:1")), aliasText("eth0:1", typed, "255.255.255.0"));
}

INSTANTIATE_TEST_SUITE_P(
    Typed, UncheckedIPv4,
    ::testing::Values(UncheckedAddress{"192.0.2.20/24", "eth0:1 192.0.2.20/24"},
                      UncheckedAddress{"192.0.2.20/25", "eth0:1 192.0.2.20/25"},
                      UncheckedAddress{"192.0.2", "eth0:1 192.0.0.2/24"},
                      UncheckedAddress{"010.0.0.9", "eth0:1 8.0.0.9/24"},
                      UncheckedAddress{"localhost", ""}));

TEST(UncheckedIPv4, ThatIsNotListedIsReplacedByTheNextAdd) {
  EXPECT_EQ(runAddrtool({"-a", "eth0", "localhost", "255.0.0.0"}), silentSuccess);
  expectRefused({"-d", "127.0.0.1"}, "127.0.0.1: not configured.");
  EXPECT_EQ(runAddrtool({"-a", "eth0", "192.0.2.10", "255.255.255.0"}), silentSuccess);
  EXPECT_EQ(readFile(interfaceFile("eth0:1")), aliasText("eth0:1", "192.0.2.10", "255.255.255.0"));
  EXPECT_EQ(runCommand({"ip", "-br", "address", "show", "to", "127.0.0.1", "dev", "eth0"}).out, "");
}

class InvisibleIPv6 : public ::testing::TestWithParam<const char*> {};

TEST_P(InvisibleIPv6, IsAddedAndSavedButNeitherListedNorDeleted) {
  const std::string address = GetParam();
  EXPECT_EQ(runAddrtool({"-a", "eth0", address, "64"}), silentSuccess);
  EXPECT_NE(runCommand({"ip", "-6", "address", "show", "dev", "eth0"}).out.find(address + "/64"),
            std::string::npos);
  EXPECT_EQ(valuesInShell("eth0", {"IPV6ADDR_SECONDARIES"}), Lines{address + "/64"});
  EXPECT_EQ(runAddrtool({"-l"}), success(freshListing));
  expectRefused({"-d", address}, address + ": not configured");
}

INSTANTIATE_TEST_SUITE_P(Typed, InvisibleIPv6, ::testing::Values("fe80::5", "::2"));

TEST(RefusedByIfconfig, ChangesNothing) {
  struct Row {
    std::string address;
    std::string third;
    std::string complaint;
  };
  const std::vector<Row> rows{
      {"300.1.1.1", "255.255.255.0", "300.1.1.1: Unknown host\n"},
      {"2001:db8::g", "64", "2001:db8::g: Resolver Error 0 (no error)\n"},
      {"fe80::5%eth0", "64", "fe80::5%eth0: Resolver Error 0 (no error)\n"},
      {"2001:db8::6", "129", "Usage:\n  ifconfig "},
  };
  const MachineState before;
  for (const auto& [address, third, complaint] : rows) {
    const Outcome outcome = runAddrtool({"-a", "eth0", address, third});
    EXPECT_EQ(outcome.exitStatus, 1);
    EXPECT_TRUE(outcome.err.starts_with(complaint)) << outcome.err;
    EXPECT_EQ(MachineState(), before);
  }
}

TEST(UncheckedIPv6, WithAPrefixInItsTextMakesTheListUnreadable) {
  EXPECT_EQ(runAddrtool({"-a", "eth0", "2001:db8::6/64", "48"}), silentSuccess);
  EXPECT_EQ(kernelAddresses(), withFreshAddresses({"eth0 2001:db8::6/64"}));
  const NetworkFiles files = networkFiles();
  const Outcome outcome = runAddrtool({"-d", "2001:db8::6"});
  EXPECT_EQ(outcome.exitStatus, 0);
  EXPECT_EQ(outcome.out.substr(0, outcome.out.find('\n')),
            "2001:db8::6/64/48\": cannot parse IPv6 address");
  EXPECT_EQ(outcome.err, outcome.out);
  EXPECT_EQ(kernelAddresses(), withFreshAddresses({}));
  EXPECT_EQ(networkFiles(), files);
}

// --- odd places for an address --------------------------------------------------

TEST(AliasLabelAsInterface, KeepsAnIPv6AddressInTheFileOfTheAlias) {
  EXPECT_EQ(runAddrtool({"-a", "eth0", "192.0.2.10", "255.255.255.0"}), silentSuccess);
  EXPECT_EQ(runAddrtool({"-a", "eth0:1", "2001:db8::9", "64"}), silentSuccess);
  const NetworkFiles files = networkFiles();
  EXPECT_EQ(valuesInShell("eth0:1", {"IPV6ADDR_SECONDARIES"}), Lines{"2001:db8::9/64"});
  EXPECT_EQ(runAddrtool({"-d", "2001:db8::9"}), silentSuccess);
  EXPECT_EQ(kernelAddresses(), withFreshAddresses({"eth0:1 192.0.2.10/24"}));
  EXPECT_EQ(networkFiles(), files);
}

TEST(MainAddressThatIsAnAliasToo, IsNotDeleted) {
  ip("address add 10.0.0.1/24 dev eth0");
  addAlias("eth0:1", "10.0.0.1/16");
  expectRefused({"-d", "10.0.0.1"}, "10.0.0.1: cannot delete main IP on interface");
}

TEST(InterfaceThatIsDown, StaysDownThroughChanges) {
  ip("link set eth0 down");
  EXPECT_EQ(runAddrtool({"-a", "eth0", "198.51.100.1", "255.255.255.0"}), silentSuccess);
  EXPECT_EQ(runAddrtool({"-a", "eth0", "2001:db8::5", "64"}), silentSuccess);
  EXPECT_EQ(runAddrtool({"-l"}), success("192.0.2.1 255.255.255.0 eth0 1\n"
                                         "198.51.100.1 255.255.255.0 eth0 0\n"
                                         "2001:db8::5 64 eth0 0\n"));
  EXPECT_EQ(runAddrtool({"-d", "198.51.100.1"}), silentSuccess);
  EXPECT_EQ(runCommand({"ip", "link", "show", "dev", "eth0", "up"}).out, "");
}

// --- the environment --------------------------------------------------------------

TEST(PosixlyCorrect, EndsTheOptionsAtTheFirstOperand) {
  const MachineState before;
  const std::string add = "addrtool -a eth0 192.0.2.10 255.255.255.0 -l";
  EXPECT_EQ(runShell("POSIXLY_CORRECT=1 " + add).exitStatus, 2);
  EXPECT_EQ(MachineState(), before);
  EXPECT_EQ(runShell(add), success(freshListing));
  EXPECT_NE(MachineState(), before);
}

}  // namespace
}  // namespace addrtool::testing
