// What --add does to the running system and to the files.
#include "changes/add_address.h"

#include <linux/netlink.h>
#include <net/if.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include <queue>

#include "support/netlink_bytes.h"
#include "support/sandbox_machine.h"

namespace addrtool::testing {
namespace {

// The results of the next calls of recv(2). If empty, the kernel answers.
std::queue<std::string> cannedReplies;

// --- IPv4 --------------------------------------------------------------------

TEST(AddAddress, AddsIPv4AsAnAliasWithItsOwnFile) {
  NetworkFiles files = networkFiles();
  expectSilentSuccess({"--add", "eth0", "192.0.2.10", "255.255.255.0"});
  expectAdded({"eth0:1 192.0.2.10/24"});
  files["ifcfg-eth0:1"] = {aliasText("eth0:1", "192.0.2.10", "255.255.255.0")};
  EXPECT_EQ(networkFiles(), files);
  EXPECT_EQ(valuesInShell("eth0:1", {"DEVICE", "IPADDR", "NETMASK"}),
            (Lines{"eth0:1", "192.0.2.10", "255.255.255.0"}));
}

TEST(AddAddress, GivesANewFileToRootWhateverTheUmaskAndTheDirectory) {
  prepare("chown :34 " + networkScripts.string() + "; chmod g+s " + networkScripts.string());
  ASSERT_EQ(runShell("umask 077; addrtool -a eth0 192.0.2.10 255.255.255.0"), silentSuccess);
  EXPECT_EQ(networkFiles().at("ifcfg-eth0:1"),
            (NetworkFile{aliasText("eth0:1", "192.0.2.10", "255.255.255.0"), 0100644, 0, 0}));
}

TEST(AddAddress, SetsOwnerThenModeThenRenamesAndNeverSyncs) {
  const auto [outcome, calls] =
      traceCommand({"trace=chown,chmod,rename,unlink,fsync,fdatasync,syncfs,sync", "signal=none"},
                   {"addrtool", "--add", "eth0", "10.0.0.5", "255.255.255.0"});
  EXPECT_EQ(outcome, silentSuccess);
  ASSERT_FALSE(calls.empty());
  const std::string file = '"' + interfaceFile("eth0:1").string();
  const std::string temporary = calls[0].substr(6, calls[0].find(',') - 6);  // after "chown("
  EXPECT_TRUE(temporary.starts_with(file + ".")) << temporary;
  EXPECT_EQ(calls,
            (Lines{"chown(" + temporary + ", 0, 0) = 0", "chmod(" + temporary + ", 0644) = 0",
                   "rename(" + temporary + ", " + file + "\") = 0"}));
}

// A left-over file does not take a number: only the kernel's labels do.
TEST(AddAddress, ReplacesAStaleAliasFileAndKeepsItsOwnerAndMode) {
  const std::string file = interfaceFile("eth0:1");
  writeFile(file, "DEVICE=eth0:1\nIPADDR=203.0.113.9\nONBOOT=no\nMTU=1400\n# a long comment\n");
  ASSERT_EQ(chown(file.c_str(), 12, 34), 0);
  ASSERT_EQ(chmod(file.c_str(), 07640), 0);
  add("192.0.2.10");
  EXPECT_EQ(networkFiles().at("ifcfg-eth0:1"),
            (NetworkFile{aliasText("eth0:1", "192.0.2.10", "255.255.255.0"), 0107640, 12, 34}));
}

TEST(AddAddress, UsesTheLowestFreeNumberOfTheInterface) {
  addInterface("eth1", {"198.51.100.1/24"});
  Lines aliases{"eth0:1 10.0.0.1/32", "eth0:web 10.0.0.2/32", "eth0:10 10.0.0.3/32",
                "eth0:4 10.0.0.4/32", "eth1:2 10.0.0.5/32"};
  addAddresses(aliases);
  for (const std::string label : {"eth0:2", "eth0:3", "eth0:5"}) {
    const std::string address = "192.0.2.1" + label.substr(5);
    add(address);
    EXPECT_EQ(valuesInShell(label, {"IPADDR"}), Lines{address});
    aliases.push_back(label + ' ' + address + "/24");
  }
  aliases.push_back("eth1 198.51.100.1/24");
  expectAdded(aliases);
}

TEST(AddAddress, WritesTheNetmaskOfThePrefixLength) {
  struct Row {
    std::string typed;
    std::string netmask;
    std::string length;
  };
  const std::vector<Row> rows{
      {"255.255.255.128", "255.255.255.128", "/25"}, {"255.0.255.0", "255.255.255.0", "/24"},
      {"0.0.255.0", "255.255.255.0", "/24"},         {"0.0.0.255", "255.255.255.255", "/32"},
      {"255.255.255.255", "255.255.255.255", "/32"}, {"0.0.0.0", "255.255.255.255", "/32"},
  };
  for (const auto& [typed, netmask, length] : rows) {
    SCOPED_TRACE(typed);
    resetMachine();
    add("10.0.0.5", typed);
    expectAdded({"eth0:1 10.0.0.5" + length});
    EXPECT_EQ(readFile(interfaceFile("eth0:1")), aliasText("eth0:1", "10.0.0.5", netmask));
  }
}

// The address is not checked. The kernel has what ifconfig makes of it.
TEST(AddAddress, KeepsTheTypedTextInTheFile) {
  const std::vector<std::pair<std::string, Lines>> rows{
      {"10.0.0.013", {"eth0:1 10.0.0.11/24"}},     {"010.0.0.9", {"eth0:1 8.0.0.9/24"}},
      {"192.0.2", {"eth0:1 192.0.0.2/24"}},        {"192.0.2.20/24", {"eth0:1 192.0.2.20/24"}},
      {"192.0.2.20/25", {"eth0:1 192.0.2.20/25"}}, {"localhost", {}},  // the address has host scope
  };
  for (const auto& [typed, added] : rows) {
    SCOPED_TRACE(typed);
    resetMachine();
    add(typed);
    expectAdded(added);
    EXPECT_EQ(readFile(interfaceFile("eth0:1")), aliasText("eth0:1", typed, "255.255.255.0"));
  }
  add("2001:DB8:0::5", "\t+ 064\n");  // the file gets the number
  expectAdded({"eth0 2001:db8::5/64"});
  EXPECT_EQ(valuesInShell("eth0", {"IPV6ADDR_SECONDARIES"}), Lines{"2001:DB8:0::5/64"});
}

TEST(AddAddress, ReplacesAnAliasThatIsNotListed) {
  add("localhost", "255.0.0.0");
  expectRefused({"-d", "127.0.0.1"}, "127.0.0.1: not configured.");
  add("192.0.2.10");
  EXPECT_EQ(readFile(interfaceFile("eth0:1")), aliasText("eth0:1", "192.0.2.10", "255.255.255.0"));
  EXPECT_EQ(runCommand({"ip", "-br", "address", "show", "to", "127.0.0.1", "dev", "eth0"}).out, "");
}

// The netmask is checked before the interface.
TEST(AddAddress, RefusesAnInvalidNetmask) {
  for (const std::string netmask :
       {"24", "", "255.255.255", "255.255.255.0 ", "255.255.255.256", "64"}) {
    for (const char* interface : {"eth0", "eth9"}) {
      expectRefused({"-a", interface, "192.0.2.10", netmask},
                    netmask + ": cannot convert to netmask");
    }
  }
}

TEST(AddAddress, RefusesAnInterfaceWithoutAnAddress) {
  addInterface("eth1", {});
  addInterface("eth2", {"169.254.1.1/16 scope link"});
  addAddresses({"eth0:1 192.0.2.10/24"});
  for (const std::string interface :
       {"eth1", "eth2", "eth0:1", "eth9", "ETH0", "eth", "lo", "eth0 ", "eth0\nx"}) {
    expectRefused({"-a", interface, "10.0.0.1", "255.255.255.0"},
                  interface + ": no such network interface.");
  }
}

// The kernel's answer is replaced, because adding that many real addresses takes minutes.
TEST(AddAddress, RefusesWhenEveryAliasNumberIsTaken) {
  const MachineState before;
  const std::uint32_t index = if_nametoindex("eth0");
  for (int number = 1; number <= 65535; ++number) {
    const Attribute label = labelAttribute("eth0:" + std::to_string(number));
    cannedReplies.push(
        datagramOf({{.index = index, .attributes = {addressAttribute("10.0.0.1"), label}}}));
  }
  cannedReplies.push(headerOnly(16, NLMSG_DONE));
  const auto add = [] { addIPv4Address("eth0", {"192.0.2.10", 24}); };
  EXPECT_EQ(failureOf(add), "eth0: no free alias number.");
  EXPECT_TRUE(cannedReplies.empty());
  EXPECT_EQ(MachineState(), before);
}

TEST(AddAddress, AcceptsAnInterfaceWithOnlyIPv6) {
  addInterface("eth1", {"2001:db8:1::1/64"});
  expectSilentSuccess({"-a", "eth1", "10.0.0.1", "255.255.255.0"});
  EXPECT_EQ(kernelAddresses().back(), "eth1:1 10.0.0.1/24");
}

TEST(AddAddress, KeepsAnInterfaceDown) {
  ip("link set eth0 down");
  add("198.51.100.1");
  add("2001:db8::5", "64");
  EXPECT_EQ(runAddrtool({"-l"}), success("192.0.2.1 255.255.255.0 eth0 1\n"
                                         "198.51.100.1 255.255.255.0 eth0 0\n"
                                         "2001:db8::5 64 eth0 0\n"));
  expectSilentSuccess({"-d", "198.51.100.1"});
  EXPECT_EQ(runCommand({"ip", "link", "show", "dev", "eth0", "up"}).out, "");
}

// --- IPv6 --------------------------------------------------------------------

TEST(AddAddress, AddsIPv6ToTheInterfaceAndItsFileKeepingOwnerAndMode) {
  const std::string file = interfaceFile("eth0");
  ASSERT_EQ(chown(file.c_str(), 12, 34), 0);
  ASSERT_EQ(chmod(file.c_str(), 06600), 0);
  NetworkFiles files = networkFiles();
  add("2001:db8::5", "64");
  expectAdded({"eth0 2001:db8::5/64"});
  files["ifcfg-eth0"].contents += "IPV6ADDR_SECONDARIES=\"2001:db8::5/64\"\n";
  EXPECT_EQ(networkFiles(), files);
  EXPECT_EQ(files["ifcfg-eth0"].mode, 0106600U);
  EXPECT_EQ(valuesInShell("eth0", {"DEVICE", "IPV6ADDR", "IPV6ADDR_SECONDARIES"}),
            (Lines{"eth0", "2001:db8::1/64", "2001:db8::5/64"}));
}

// Required: the closing quote of the list counts as part of its last entry.
TEST(AddAddress, LosesThePrefixLengthOfTheLastIPv6AddressInTheList) {
  for (const char* address : {"2001:db8::5", "2001:db8::6", "2001:db8::7"}) add(address, "64");
  EXPECT_EQ(valuesInShell("eth0", {"IPV6ADDR", "IPV6ADDR_SECONDARIES"}),
            (Lines{"2001:db8::1/64", "2001:db8::7/64 2001:db8::6/64 2001:db8::5/0"}));
}

TEST(AddAddress, KeepsIPv6OfAnAliasInTheFileOfTheAlias) {
  add("192.0.2.10");
  expectSilentSuccess({"-a", "eth0:1", "2001:db8::9", "64"});
  const NetworkFiles files = networkFiles();
  EXPECT_EQ(valuesInShell("eth0:1", {"IPV6ADDR_SECONDARIES"}), Lines{"2001:db8::9/64"});
  expectSilentSuccess({"-d", "2001:db8::9"});
  expectAdded({"eth0:1 192.0.2.10/24"});
  EXPECT_EQ(networkFiles(), files);
}

TEST(AddAddress, SavesAnIPv6AddressThatIsNeitherListedNorDeleted) {
  for (const std::string address : {"fe80::5", "::2"}) {
    SCOPED_TRACE(address);
    resetMachine();
    add(address, "64");
    EXPECT_NE(runCommand({"ip", "-6", "address", "show", "dev", "eth0"}).out.find(address + "/64"),
              std::string::npos);
    EXPECT_EQ(valuesInShell("eth0", {"IPV6ADDR_SECONDARIES"}), Lines{address + "/64"});
    EXPECT_EQ(runAddrtool({"-l"}), success(freshListing));
    expectRefused({"-d", address}, address + ": not configured");
  }
}

// Any colon makes an address IPv6. The prefix length is checked before the interface.
TEST(AddAddress, RefusesAnInvalidPrefixLength) {
  for (const std::string length :
       {"64x", "-64", "70000", "", " ", "+", "6 4", "0x40", "65536", "/64", "255.255.255.0", "x"}) {
    for (const char* interface : {"eth0", "eth9"}) {
      for (const char* address : {"2001:db8::5", "192.0.2.10:"}) {
        expectRefused({"-a", interface, "--", address, length}, length + ": cannot convert to int");
      }
    }
  }
}

TEST(AddAddress, FailsWithTheCommandWhenIfconfigFails) {
  struct Row {
    std::string operands;
    std::string complaint;  // the start of what ifconfig prints
    std::string command;
    int status;
  };
  const std::string rest = " netmask  '255.255.255.0' up";
  const std::string error = ": Resolver Error 0 (no error)\n";
  const std::vector<Row> rows{
      {"eth0 192.0.2.10 255.255.255.0", "", "'eth0:2' '192.0.2.10'" + rest, 255},  // is on eth0:1
      {"eth0 256.1.1.1 255.255.255.0", "256.1.1.1: Unknown host", "'eth0:2' '256.1.1.1'" + rest, 1},
      {"eth0 2001:db8::1 64", "", "eth0 add 2001:db8::1/64", 1},
      {"eth9 2001:db8::5 64", "", "eth9 add 2001:db8::5/64", 1},
      {"eth0 : 64", "", "eth0 add :/64", 1},
      {"eth0 2001:db8::g 64", "2001:db8::g" + error, "eth0 add 2001:db8::g/64", 1},
      {"eth0 fe80::5%eth0 64", "fe80::5%eth0" + error, "eth0 add fe80::5%eth0/64", 1},
      {"eth0 2001:db8::6 129", "Usage:\n  ifconfig ", "eth0 add 2001:db8::6/129", 3},
  };
  add("192.0.2.10");
  const MachineState before;
  for (const auto& [operands, complaint, command, status] : rows) {
    const std::string failure = "/sbin/ifconfig " + command + " exited with non-zero status " +
                                std::to_string(status) + '\n';
    const Outcome outcome = runShell("addrtool -a " + operands);
    EXPECT_EQ(outcome.exitStatus, 1);
    EXPECT_TRUE(outcome.err.starts_with(complaint)) << outcome.err;
    EXPECT_TRUE(outcome.err.ends_with(failure)) << outcome.err;
    EXPECT_EQ(MachineState(), before);
  }
}

TEST(AddAddress, CreatesNoInterfaceFile) {
  addInterface("eth1", {"2001:db8:1::1/64"});
  fs::remove(interfaceFile("eth1"));
  const NetworkFiles files = networkFiles();
  expectSilentSuccess({"-a", "eth1", "2001:db8:1::5", "64"});
  EXPECT_EQ(kernelAddresses().back(), "eth1 2001:db8:1::5/64");
  expectSilentSuccess({"-d", "2001:db8:1::1"});
  expectAdded({"eth1 2001:db8:1::5/64"});
  EXPECT_EQ(networkFiles(), files);
}

}  // namespace
}  // namespace addrtool::testing

// The linker option --wrap=NAME sends every call of NAME to __wrap_NAME.
// NOLINTBEGIN(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp,readability-identifier-naming)
extern "C" {

ssize_t __real_recv(int socketFd, void* buffer, std::size_t size, int flags);
ssize_t __wrap_recv(int socketFd, void* buffer, std::size_t size, int flags) {
  using addrtool::testing::cannedReplies;
  if (cannedReplies.empty()) return __real_recv(socketFd, buffer, size, flags);
  const std::size_t length = cannedReplies.front().copy(static_cast<char*>(buffer), size);
  cannedReplies.pop();
  return static_cast<ssize_t>(length);
}

}  // extern "C"
// NOLINTEND(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp,readability-identifier-naming)
