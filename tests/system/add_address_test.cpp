// What --add does to the running system and to the files.
#include "changes/add_address.h"

#include <linux/netlink.h>
#include <net/if.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include <queue>
#include <utility>

#include "support/netlink_bytes.h"
#include "support/sandbox_machine.h"

namespace addrtool::testing {
namespace {

// The results of the next calls of recv(2). If empty, the kernel answers.
std::queue<std::string> replies;

// --- IPv4 --------------------------------------------------------------------

TEST(AddAddress, AddsIPv4AsAnAliasWithItsOwnFile) {
  NetworkFiles files = networkFiles();
  EXPECT_EQ(runAddrtool({"--add", "eth0", "192.0.2.10", "255.255.255.0"}), silentSuccess);
  EXPECT_EQ(kernelAddresses(), withFreshAddresses({"eth0:1 192.0.2.10/24"}));
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
  const auto [outcome, calls] = traceCommand(
      {"-e", "trace=chown,chmod,rename,unlink,fsync,fdatasync,syncfs,sync", "-e", "signal=none"},
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
  EXPECT_EQ(runAddrtool({"-a", "eth0", "192.0.2.10", "255.255.255.0"}), silentSuccess);
  EXPECT_EQ(networkFiles().at("ifcfg-eth0:1"),
            (NetworkFile{aliasText("eth0:1", "192.0.2.10", "255.255.255.0"), 0107640, 12, 34}));
}

TEST(AddAddress, UsesTheLowestFreeNumberOfTheInterface) {
  addInterface("eth1", {"198.51.100.1/24"});
  addAlias("eth0:1", "10.0.0.1/32");
  addAlias("eth0:web", "10.0.0.2/32");
  addAlias("eth0:10", "10.0.0.3/32");
  addAlias("eth0:4", "10.0.0.4/32");
  addAlias("eth1:2", "10.0.0.5/32");
  for (const char* label : {"eth0:2", "eth0:3", "eth0:5"}) {
    const std::string address = std::string("192.0.2.1") + label[5];
    EXPECT_EQ(runAddrtool({"-a", "eth0", address, "255.255.255.0"}), silentSuccess);
    EXPECT_EQ(valuesInShell(label, {"IPADDR"}), Lines{address});
  }
  EXPECT_EQ(
      kernelAddresses(),
      withFreshAddresses({"eth0:1 10.0.0.1/32", "eth0:2 192.0.2.12/24", "eth0:3 192.0.2.13/24",
                          "eth0:4 10.0.0.4/32", "eth0:5 192.0.2.15/24", "eth0:10 10.0.0.3/32",
                          "eth0:web 10.0.0.2/32", "eth1 198.51.100.1/24", "eth1:2 10.0.0.5/32"}));
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
  for (std::size_t i = 0; i < rows.size(); ++i) {
    const auto& [typed, netmask, length] = rows[i];
    const std::string address = "10." + std::to_string(i) + ".0.5";
    const std::string label = "eth0:" + std::to_string(i + 1);
    EXPECT_EQ(runAddrtool({"-a", "eth0", address, typed}), silentSuccess) << typed;
    EXPECT_EQ(readFile(interfaceFile(label)), aliasText(label, address, netmask));
    EXPECT_EQ(kernelAddresses()[i + 2], label + ' ' + address + length);
  }
}

TEST(AddAddress, KeepsTheTypedTextInTheFile) {
  EXPECT_EQ(runAddrtool({"-a", "eth0", "10.0.0.013", "255.255.255.0"}), silentSuccess);
  EXPECT_EQ(runAddrtool({"-a", "eth0", "2001:DB8:0::5", "64"}), silentSuccess);
  EXPECT_EQ(kernelAddresses(), withFreshAddresses({"eth0:1 10.0.0.11/24", "eth0 2001:db8::5/64"}));
  EXPECT_EQ(valuesInShell("eth0:1", {"IPADDR"}), Lines{"10.0.0.013"});
  EXPECT_EQ(valuesInShell("eth0", {"IPV6ADDR_SECONDARIES"}), Lines{"2001:DB8:0::5/64"});
}

TEST(AddAddress, RefusesAnInvalidNetmask) {
  for (const char* netmask : {"24", "", "255.255.255", "255.255.255.0 ", "255.255.255.256", "64"}) {
    expectRefused({"-a", "eth0", "192.0.2.10", netmask},
                  std::string(netmask) + ": cannot convert to netmask");
  }
}

TEST(AddAddress, RefusesAnInterfaceWithoutAnAddress) {
  addInterface("eth1", {});
  addInterface("eth2", {"169.254.1.1/16 scope link"});
  addAlias("eth0:1", "192.0.2.10/24");
  for (const char* interface :
       {"eth1", "eth2", "eth0:1", "eth9", "ETH0", "eth", "lo", "eth0 ", "eth0\nx"}) {
    expectRefused({"-a", interface, "10.0.0.1", "255.255.255.0"},
                  std::string(interface) + ": no such network interface.");
  }
}

TEST(AddAddress, ChecksTheThirdOperandBeforeTheInterface) {
  expectRefused({"-a", "eth9", "192.0.2.10", "24"}, "24: cannot convert to netmask");
  expectRefused({"-a", "eth9", "2001:db8::5", "x"}, "x: cannot convert to int");
}

// The kernel's answer is replaced, because adding that many real addresses takes minutes.
TEST(AddAddress, RefusesWhenEveryAliasNumberIsTaken) {
  const MachineState before;
  const std::uint32_t index = if_nametoindex("eth0");
  std::vector<AddressMessage> messages;
  for (int number = 1; number <= 65535; ++number) {
    const Attribute label = labelAttribute("eth0:" + std::to_string(number));
    messages.push_back({.index = index, .attributes = {addressAttribute("10.0.0.1"), label}});
    if (messages.size() < 100 && number != 65535) continue;
    replies.push(datagramOf(messages));
    messages.clear();
  }
  replies.push(headerOnly(16, NLMSG_DONE));
  EXPECT_EQ(failureOf([] {
              addIPv4Address("eth0", {"192.0.2.10", 24});
            }),
            "eth0: no free alias number.");
  EXPECT_TRUE(replies.empty());
  EXPECT_EQ(MachineState(), before);
}

TEST(AddAddress, AcceptsAnInterfaceWithOnlyIPv6) {
  addInterface("eth1", {"2001:db8:1::1/64"});
  EXPECT_EQ(runAddrtool({"-a", "eth1", "10.0.0.1", "255.255.255.0"}), silentSuccess);
  EXPECT_EQ(kernelAddresses().back(), "eth1:1 10.0.0.1/24");
}

TEST(AddAddress, KeepsTheFilesWhenTheIPv4CommandFails) {
  recordIfconfig("exit 1");
  expectRefused({"-a", "eth0", "192.0.2.10", "255.255.255.0"},
                "/sbin/ifconfig 'eth0:1' '192.0.2.10' netmask  '255.255.255.0' up"
                " exited with non-zero status 1");
}

TEST(AddAddress, ReportsThatTheKernelCannotBeAsked) {
  expectRefusedWith("inject=sendto:error=ENOBUFS", {"-a", "eth0", "192.0.2.10", "255.255.255.0"},
                    "Can not send RTM_GETADDR request: No buffer space available");
}

// --- IPv6 --------------------------------------------------------------------

TEST(AddAddress, AddsIPv6ToTheInterfaceAndItsFile) {
  NetworkFiles files = networkFiles();
  EXPECT_EQ(runAddrtool({"-a", "eth0", "2001:db8::5", "64"}), silentSuccess);
  EXPECT_EQ(kernelAddresses(), withFreshAddresses({"eth0 2001:db8::5/64"}));
  files["ifcfg-eth0"].contents += "IPV6ADDR_SECONDARIES=\"2001:db8::5/64\"\n";
  EXPECT_EQ(networkFiles(), files);
  EXPECT_EQ(valuesInShell("eth0", {"DEVICE", "IPV6ADDR", "IPV6ADDR_SECONDARIES"}),
            (Lines{"eth0", "2001:db8::1/64", "2001:db8::5/64"}));
}

// Required: the closing quote of the list counts as part of its last entry.
TEST(AddAddress, LosesThePrefixLengthOfTheLastIPv6AddressInTheList) {
  for (const char* address : {"2001:db8::5", "2001:db8::6", "2001:db8::7"}) {
    ASSERT_EQ(runAddrtool({"-a", "eth0", address, "64"}), silentSuccess);
  }
  EXPECT_EQ(valuesInShell("eth0", {"IPV6ADDR", "IPV6ADDR_SECONDARIES"}),
            (Lines{"2001:db8::1/64", "2001:db8::7/64 2001:db8::6/64 2001:db8::5/0"}));
}

TEST(AddAddress, KeepsOwnerAndModeOfTheInterfaceFile) {
  const std::string file = interfaceFile("eth0");
  ASSERT_EQ(chown(file.c_str(), 12, 34), 0);
  ASSERT_EQ(chmod(file.c_str(), 06600), 0);
  NetworkFiles files = networkFiles();
  EXPECT_EQ(runAddrtool({"-a", "eth0", "2001:db8::5", "64"}), silentSuccess);
  files["ifcfg-eth0"].contents += "IPV6ADDR_SECONDARIES=\"2001:db8::5/64\"\n";
  EXPECT_EQ(networkFiles(), files);
  EXPECT_EQ(files["ifcfg-eth0"].mode, 0106600U);
}

TEST(AddAddress, AcceptsWhiteSpaceAndAPlusInAPrefixLength) {
  int number = 5;
  for (const char* length : {"64 ", " 64", "+64", "\t+ 64\n", "064"}) {
    const std::string address = "2001:db8::" + std::to_string(number++);
    EXPECT_EQ(runAddrtool({"-a", "eth0", address, length}), silentSuccess) << length;
    EXPECT_EQ(kernelAddresses().back(), "eth0 " + address + "/64");
    EXPECT_TRUE(readFile(interfaceFile("eth0")).find(address + "/64") != std::string::npos);
  }
}

TEST(AddAddress, RefusesAnInvalidPrefixLength) {
  for (const char* length :
       {"64x", "-64", "70000", "", " ", "+", "6 4", "0x40", "65536", "/64", "255.255.255.0"}) {
    expectRefused({"-a", "eth0", "--", "2001:db8::5", length},
                  std::string(length) + ": cannot convert to int");
  }
}

// So the third operand must be a prefix length.
TEST(AddAddress, TreatsAnyTextWithAColonAsIPv6) {
  expectRefused({"-a", "eth0", "192.0.2.10:", "255.255.255.0"},
                "255.255.255.0: cannot convert to int");
}

TEST(AddAddress, FailsWithTheCommandWhenTheKernelRefuses) {
  ASSERT_EQ(runAddrtool({"-a", "eth0", "192.0.2.10", "255.255.255.0"}), silentSuccess);
  const std::vector<std::pair<Lines, std::string>> rows{
      {{"-a", "eth0", "192.0.2.10", "255.255.255.0"},  // exists as alias 1
       "'eth0:2' '192.0.2.10' netmask  '255.255.255.0' up exited with non-zero status 255\n"},
      {{"-a", "eth0", "2001:db8::1", "64"},  // exists
       "eth0 add 2001:db8::1/64 exited with non-zero status 1\n"},
      {{"-a", "eth9", "2001:db8::5", "64"},
       "eth9 add 2001:db8::5/64 exited with non-zero status 1\n"},
      {{"-a", "eth0", ":", "64"}, "eth0 add :/64 exited with non-zero status 1\n"},
  };
  const MachineState before;
  for (const auto& [arguments, end] : rows) {
    const Outcome outcome = runAddrtool(arguments);
    EXPECT_EQ(outcome.exitStatus, 1);
    EXPECT_TRUE(outcome.err.ends_with("/sbin/ifconfig " + end)) << outcome.err;
    EXPECT_EQ(MachineState(), before);
  }
}

TEST(AddAddress, AddsIPv6WithoutReadingTheKernel) {
  const auto [outcome, calls] =
      traceCommand({"-e", "trace=socket,sendto"}, {"addrtool", "-a", "eth0", "2001:db8::5", "64"});
  EXPECT_EQ(outcome, silentSuccess);
  EXPECT_EQ(callsStarting("sendto(", calls), Lines{});
}

TEST(AddAddress, CreatesNoInterfaceFile) {
  addInterface("eth1", {"2001:db8:1::1/64"});
  prepare("rm " + interfaceFile("eth1").string());
  const NetworkFiles files = networkFiles();
  EXPECT_EQ(runAddrtool({"-a", "eth1", "2001:db8:1::5", "64"}), silentSuccess);
  EXPECT_EQ(kernelAddresses().back(), "eth1 2001:db8:1::5/64");
  EXPECT_EQ(runAddrtool({"-d", "2001:db8:1::1"}), silentSuccess);
  EXPECT_EQ(kernelAddresses(), withFreshAddresses({"eth1 2001:db8:1::5/64"}));
  EXPECT_EQ(networkFiles(), files);
}

}  // namespace
}  // namespace addrtool::testing

// The linker option --wrap=NAME sends every call of NAME to __wrap_NAME.
// NOLINTBEGIN(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp,readability-identifier-naming)
extern "C" {

ssize_t __real_recv(int socketFd, void* buffer, std::size_t size, int flags);
ssize_t __wrap_recv(int socketFd, void* buffer, std::size_t size, int flags) {
  using addrtool::testing::replies;
  if (replies.empty()) return __real_recv(socketFd, buffer, size, flags);
  const std::size_t length = replies.front().copy(static_cast<char*>(buffer), size);
  replies.pop();
  return static_cast<ssize_t>(length);
}

}  // extern "C"
// NOLINTEND(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp,readability-identifier-naming)
