#include "inventory/listing.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>

#include "inventory/address_inventory.h"
#include "support/sandbox_machine.h"

namespace addrtool::testing {
namespace {

// What `addrtool --list` prints; it must succeed and say nothing else.
std::string listing() {
  const Outcome outcome = runCommand({"addrtool", "--list"});
  EXPECT_EQ(outcome, (Outcome{0, 0, outcome.out, ""}));
  return outcome.out;
}

Outcome printInventory(const std::string& what) {
  return runCommand({"print_inventory", what});
}

TEST(Listing, EveryAddressIsALineOfFourFields) {
  EXPECT_EQ(listing(), freshListing);
}

TEST(Listing, AMachineWithOnlyLoopbackGivesNoLine) {
  ip("link delete eth0");
  EXPECT_EQ(listing(), "");
}

TEST(Listing, AliasesComeInTextOrderOfTheirSuffixAndTheFirstIsPrimary) {
  ip(R"(link add eth1 type veth peer name peer1
        address add 10.1.0.2/16 dev eth1 label eth1:2
        address add 10.1.0.10/16 dev eth1 label eth1:10
        address add 10.1.0.1/16 dev eth1 label eth1:1
        address add 10.1.0.3/16 dev eth1 label eth1:web:2)");
  EXPECT_EQ(listing(), freshListing +
                           "10.1.0.1 255.255.0.0 eth1 1\n"
                           "10.1.0.10 255.255.0.0 eth1 0\n"
                           "10.1.0.2 255.255.0.0 eth1 0\n"
                           "10.1.0.3 255.255.0.0 eth1 0\n");
}

TEST(Listing, PlainAddressesComeFirstInTheKernelsOrder) {
  ip(R"(address flush dev eth0
        address add 192.0.2.1/24 dev eth0 label eth0:1
        address add 198.51.100.9/24 dev eth0
        address add 198.51.100.1/24 dev eth0
        address add 192.0.2.2/24 dev eth0)");
  EXPECT_EQ(listing(),
            "198.51.100.9 255.255.255.0 eth0 1\n"
            "198.51.100.1 255.255.255.0 eth0 0\n"
            "192.0.2.2 255.255.255.0 eth0 0\n"
            "192.0.2.1 255.255.255.0 eth0 0\n");
}

TEST(Listing, OfTwoAddressesWithOneLabelTheFirstIsThere) {
  ip(R"(address add 192.0.2.2/24 dev eth0 label eth0:1
        address add 192.0.2.3/24 dev eth0 label eth0:1)");
  EXPECT_EQ(listing(),
            "192.0.2.1 255.255.255.0 eth0 1\n"
            "192.0.2.2 255.255.255.0 eth0 0\n"
            "2001:db8::1 64 eth0 0\n");
}

TEST(Listing, InterfacesComeInNameOrderWhateverTheKernels) {
  ip(R"(link delete eth0
        link add eth1 type veth peer name peer1
        link add eth0 type veth peer name peer0
        link add eth10 type veth peer name peer10
        address add 192.0.2.11/24 dev eth1
        address add 2001:db8::11/64 dev eth1 nodad
        address add 192.0.2.110/24 dev eth10
        address add 192.0.2.10/24 dev eth0
        address add 2001:db8::10/64 dev eth0 nodad
        address add 10.0.0.1/32 dev lo)");
  EXPECT_EQ(listing(),
            "192.0.2.10 255.255.255.0 eth0 1\n"
            "2001:db8::10 64 eth0 0\n"
            "192.0.2.11 255.255.255.0 eth1 1\n"
            "2001:db8::11 64 eth1 0\n"
            "192.0.2.110 255.255.255.0 eth10 1\n"
            "10.0.0.1 255.255.255.255 lo 1\n");
}

TEST(Listing, PrefixLengthZeroHasTheNetmaskOfLength32) {
  ip(R"(address add 198.51.100.32/32 dev eth0
        address add 203.0.113.1/0 dev eth0
        address add 192.0.2.2/24 dev eth0)");
  EXPECT_EQ(listing(),
            "192.0.2.1 255.255.255.0 eth0 1\n"
            "198.51.100.32 255.255.255.255 eth0 0\n"
            "203.0.113.1 255.255.255.255 eth0 0\n"
            "192.0.2.2 255.255.255.0 eth0 0\n"
            "2001:db8::1 64 eth0 0\n");
}

TEST(Listing, IPv6LinesHaveThePrefixLengthInDecimal) {
  ip(R"(address flush dev eth0
        address add 2001:db8:128::1/128 dev eth0 nodad
        address add 2001:DB8:0:0:1:0:0:1/7 dev eth0 nodad)");
  const std::string lines = listing();
  EXPECT_TRUE(lines.find("2001:db8:128::1 128 eth0 0\n") != std::string::npos) << lines;
  EXPECT_TRUE(lines.find("2001:db8::1:0:0:1 7 eth0 0\n") != std::string::npos) << lines;
  EXPECT_EQ(std::count(lines.begin(), lines.end(), '\n'), 2);
}

TEST(Listing, OnAPointToPointLinkTheOwnAddressIsThere) {
  ip(R"(address add 10.9.9.1 peer 10.9.9.2/32 dev eth0
        address add 2001:db8:9::1 peer 2001:db8:9::2/128 dev eth0 nodad)");
  EXPECT_EQ(listing(),
            "192.0.2.1 255.255.255.0 eth0 1\n"
            "10.9.9.1 255.255.255.255 eth0 0\n"
            "2001:db8:9::1 128 eth0 0\n"
            "2001:db8::1 64 eth0 0\n");
}

TEST(Listing, OnlyGlobalScopeIsThereWhateverTheAddress) {
  ip(R"(address add 10.0.0.1/32 dev eth0 scope link
        address add 10.0.0.2/32 dev eth0 scope host
        address add 10.0.0.3/32 dev eth0 scope 200
        address add 127.0.5.5/32 dev eth0 scope global
        address add fe80::5/64 dev eth0 nodad)");
  EXPECT_EQ(listing(),
            "192.0.2.1 255.255.255.0 eth0 1\n"
            "127.0.5.5 255.255.255.255 eth0 0\n"
            "2001:db8::1 64 eth0 0\n");
}

TEST(Listing, LimitedAndTemporaryIPv6AddressesAreAbsent) {
  const Outcome enabled = runShell("echo 2 > /proc/sys/net/ipv6/conf/eth0/use_tempaddr");
  ASSERT_EQ(enabled.exitStatus, 0) << enabled.err;
  ip(R"(address delete 2001:db8::1/64 dev eth0
        address add 2001:db8::a/64 dev eth0 nodad valid_lft 1000 preferred_lft 500
        address add 2001:db8:2::1/64 dev eth0 nodad mngtmpaddr)");
  ASSERT_NE(runShell("ip -6 address show dev eth0 temporary").out, "");
  EXPECT_EQ(listing(),
            "192.0.2.1 255.255.255.0 eth0 1\n"
            "2001:db8:2::1 64 eth0 0\n");
}

TEST(Listing, TheAddressColonColonTwoIsAbsent) {
  ip(R"(link add eth1 type veth peer name peer1
        address add ::2/128 dev eth1 nodad
        address flush dev eth0
        address add ::2/128 dev eth0 nodad
        address add ::3/128 dev eth0 nodad)");
  EXPECT_EQ(listing(), "::3 128 eth0 0\n");
  EXPECT_EQ(printInventory("interface-names"), (Outcome{0, 0, "eth0\n", ""}));
}

TEST(Listing, SecondaryIPv4AddressesArePlainToo) {
  ip("address add 192.0.2.7/24 dev eth0");
  ASSERT_NE(runShell("ip address show dev eth0 secondary").out, "");
  EXPECT_EQ(listing(),
            "192.0.2.1 255.255.255.0 eth0 1\n"
            "192.0.2.7 255.255.255.0 eth0 0\n"
            "2001:db8::1 64 eth0 0\n");
}

TEST(Listing, ThousandsOfAddressesAreThereInOrder) {
  std::string commands;
  std::string lines;
  for (int n = 0; n < 5000; ++n) {
    const std::string address = "10." + std::to_string(n / 250) + ".0." + std::to_string(n % 250);
    commands += "address add " + address + "/32 dev eth0\n";
    lines += address + " 255.255.255.255 eth0 0\n";
  }
  ip(commands);
  // Not EXPECT_EQ, which would print all of them.
  EXPECT_TRUE(listing() == "192.0.2.1 255.255.255.0 eth0 1\n" + lines + "2001:db8::1 64 eth0 0\n");
}

TEST(Listing, EveryLineIsAWriteOfItsOwn) {
  ip("address add 192.0.2.2/24 dev eth0 label eth0:1");
  const Trace trace = traceCommand({"-e", "trace=write"}, {"addrtool", "--list"});
  EXPECT_EQ(callsStarting("write(1, ", trace.calls),
            (Lines{
                R"(write(1, "192.0.2.1 255.255.255.0 eth0 1\n", 31) = 31)",
                R"(write(1, "192.0.2.2 255.255.255.0 eth0 0\n", 31) = 31)",
                R"(write(1, "2001:db8::1 64 eth0 0\n", 22) = 22)",
            }));
}

TEST(Listing, ManyAliasesCostAReceivePerDatagramAWritePerLineAndLittleElse) {
  std::string commands;
  for (int n = 1; n <= 2000; ++n) {
    const std::string address = "10.0." + std::to_string(n / 250) + '.' + std::to_string(n % 250);
    commands += "address add " + address + "/32 dev eth0 label eth0:" + std::to_string(n) + '\n';
  }
  ip(commands);
  const Trace trace = traceCommand({"-e", "trace=!%memory"}, {"addrtool", "--list"});
  EXPECT_EQ(trace.outcome.exitStatus, 0);

  const auto calls = callsFrom("socket(AF_NETLINK", trace);
  const auto receives = callsStarting("recvfrom(", calls).size();
  const auto writes = callsStarting("write(", calls).size();
  EXPECT_EQ(writes, 2002U);
  EXPECT_GT(receives, 10U);
  EXPECT_LT(receives, 200U);
  EXPECT_LE(calls.size() - receives - writes, 12U);  // the sanitizers add some of their own
}

TEST(Listing, ALineOfWhichOnlyAPartWasWrittenIsWrittenToItsEnd) {
  const Trace trace =
      traceCommand({"-e", "trace=write", "-e", "inject=write:retval=5:when=1"}, {"addrtool", "-l"});
  EXPECT_EQ(trace.outcome, (Outcome{0, 0, freshListing.substr(5), ""}));
}

TEST(Listing, LinesThatCannotBeWrittenAreLostWithoutAWord) {
  EXPECT_EQ(runShell("addrtool --list >/dev/full"), silentSuccess);
}

TEST(Listing, NothingFollowsALineThatCannotBeWritten) {
  ip("address add 192.0.2.2/24 dev eth0 label eth0:1");
  const Lines lines{"192.0.2.1 255.255.255.0 eth0 1\n", "192.0.2.2 255.255.255.0 eth0 0\n",
                    "2001:db8::1 64 eth0 0\n"};
  std::string printed;
  for (std::size_t i = 0; i < lines.size(); ++i) {
    const std::string fault = "inject=write:error=ENOSPC:when=" + std::to_string(i + 1);
    const Trace trace = traceCommand({"-e", "trace=write", "-e", fault}, {"addrtool", "-l"});
    EXPECT_EQ(trace.outcome, (Outcome{0, 0, printed, ""})) << fault;
    EXPECT_EQ(callsStarting("write(1, ", trace.calls).size(), i + 1) << fault;
    printed += lines[i];
  }
}

TEST(InterfaceNames, StopAtANameThatCannotBeWritten) {
  ip(R"(link add eth1 type veth peer name peer1
        address add 10.1.0.1/16 dev eth1)");
  const Trace trace = traceCommand({"-e", "trace=write", "-e", "inject=write:error=ENOSPC:when=1"},
                                   {"print_inventory", "interface-names"});
  EXPECT_EQ(trace.outcome, (Outcome{0, 0, "", ""}));
}

TEST(Listing, AnInterruptedWriteIsRepeated) {
  for (const char* const interrupted : {"1", "2"}) {
    const Trace trace = traceCommand(
        {"-e", "trace=write", "-e", std::string("inject=write:error=EINTR:when=") + interrupted},
        {"addrtool", "-l"});
    EXPECT_EQ(trace.outcome, (Outcome{0, 0, freshListing, ""}));
  }
}

TEST(Listing, AnInterruptedWaitIsRepeated) {
  const Trace trace =
      traceCommand({"-e", "trace=write,/poll", "-e", "inject=write:error=EAGAIN:when=1", "-e",
                    "inject=/poll:error=EINTR:when=1"},
                   {"addrtool", "-l"});
  EXPECT_EQ(trace.outcome, (Outcome{0, 0, freshListing, ""}));
}

TEST(Listing, AWaitThatFailsEndsTheListing) {
  const Trace trace =
      traceCommand({"-e", "trace=write,/poll", "-e", "inject=write:error=EAGAIN:when=2", "-e",
                    "inject=/poll:error=ENOMEM"},
                   {"addrtool", "-l"});
  EXPECT_EQ(trace.outcome, (Outcome{0, 0, "192.0.2.1 255.255.255.0 eth0 1\n", ""}));
}

// Runs the listing with a pipe that refuses to block for its output, and reads it slowly.
std::string listingThroughNonBlockingPipe() {
  std::array<int, 2> ends{};
  EXPECT_EQ(pipe2(ends.data(), O_CLOEXEC), 0);
  EXPECT_EQ(fcntl(ends[1], F_SETFL, O_NONBLOCK), 0);
  const pid_t child = fork();
  if (child == 0) {
    dup2(ends[1], STDOUT_FILENO);
    execlp("addrtool", "addrtool", "--list", nullptr);
    _exit(127);
  }
  close(ends[1]);
  std::string text;
  std::array<char, 4096> buffer{};
  for (ssize_t size = 1; size > 0;) {
    usleep(2000);
    size = read(ends[0], buffer.data(), buffer.size());
    if (size > 0) text.append(buffer.data(), static_cast<std::size_t>(size));
  }
  close(ends[0]);
  int status = 0;
  waitpid(child, &status, 0);
  EXPECT_EQ(status, 0);
  return text;
}

TEST(Listing, IsCompleteThroughAFullNonBlockingPipe) {
  std::string commands;
  for (int n = 0; n < 5000; ++n) {
    commands += "address add 10." + std::to_string(n / 250) + ".0." + std::to_string(n % 250) +
                "/32 dev eth0\n";
  }
  ip(commands);
  const std::string expected = listing();
  ASSERT_GT(expected.size(), 2U * 65536U) << "more than the pipe holds";
  EXPECT_TRUE(listingThroughNonBlockingPipe() == expected);
}

// --- what no option reaches ---

Lines describe(const AddressInventory& inventory) {
  Lines lines;
  for (const InterfaceRecord& interface : inventory) {
    lines.push_back(interface.name);
    for (const auto* records : {&interface.ipv4, &interface.ipv6}) {
      for (const AddressRecord& record : *records) {
        lines.push_back(record.address + '/' + std::to_string(record.prefixLength));
      }
    }
  }
  return lines;
}

TEST(Inventory, HoldsTheManagedAddressesByInterface) {
  ip("address add 192.0.2.2/24 dev eth0 label eth0:1");
  EXPECT_EQ(describe(buildAddressInventory(false)),
            (Lines{"eth0", "192.0.2.1/24", "192.0.2.2/24", "2001:db8::1/64"}));
}

TEST(Inventory, WithHostScopeHoldsLoopbackToo) {
  EXPECT_EQ(describe(buildAddressInventory(true)),
            (Lines{"eth0", "192.0.2.1/24", "2001:db8::1/64", "lo", "127.0.0.1/8", "::1/128"}));
}

TEST(Inventory, IsEmptyOnAMachineWithOnlyLoopback) {
  ip("link delete eth0");
  EXPECT_TRUE(buildAddressInventory(false).empty());
}

TEST(Inventory, IsReadAfreshEachTime) {
  EXPECT_EQ(describe(buildAddressInventory(false)).size(), 3U);
  ip("address add 192.0.2.2/24 dev eth0");
  EXPECT_EQ(describe(buildAddressInventory(false)).size(), 4U);
}

TEST(MainAddress, IsTheFirstIPv4AddressOfTheFirstInterface) {
  ip(R"(link add eth1 type veth peer name peer1
        address add 10.1.0.1/16 dev eth1
        address add 192.0.2.2/24 dev eth0)");
  EXPECT_EQ(mainAddress(), "192.0.2.1");
  EXPECT_EQ(printInventory("main-address"), (Outcome{0, 0, "192.0.2.1\n", ""}));
}

TEST(MainAddress, MayBeAnAlias) {
  ip(R"(address delete 192.0.2.1/24 dev eth0
        address add 192.0.2.2/24 dev eth0 label eth0:2
        address add 192.0.2.10/24 dev eth0 label eth0:10)");
  EXPECT_EQ(mainAddress(), "192.0.2.10");
}

TEST(MainAddress, IsAnIPv6AddressWhenTheFirstInterfaceHasNoOther) {
  ip(R"(link add a0 type veth peer name peer1
        address add 2001:db8:a::1/64 dev a0 nodad)");
  EXPECT_EQ(mainAddress(), "2001:db8:a::1");
  EXPECT_EQ(printInventory("main-address"), (Outcome{0, 0, "2001:db8:a::1\n", ""}));
}

TEST(MainAddress, FailsOnAMachineWithOnlyLoopback) {
  ip("link delete eth0");
  EXPECT_EQ(failureOf([] { static_cast<void>(mainAddress()); }),
            "There are no network interfaces!");
  EXPECT_EQ(printInventory("main-address"),
            (Outcome{1, 0, "", "There are no network interfaces!\n"}));
}

TEST(InterfaceNames, ComeInNameOrderOncePerInterface) {
  ip(R"(link add wlan0 type veth peer name peer1
        link add eth1 type veth peer name peer2
        address add 10.1.0.1/16 dev eth1
        address add 10.1.0.2/16 dev eth1 label eth1:1
        address add 2001:db8:2::1/64 dev wlan0 nodad
        address add 192.0.2.2/24 dev eth0)");
  EXPECT_EQ(printInventory("interface-names"), (Outcome{0, 0, "eth0\neth1\nwlan0\n", ""}));
}

TEST(InterfaceNames, OfAMachineWithOnlyLoopbackAreNone) {
  ip("link delete eth0");
  EXPECT_EQ(printInventory("interface-names"), silentSuccess);
}

TEST(InterfaceNames, EndAtTheirFirstColonAndAreMerged) {
  ip(R"(link add eth1 type veth peer name peer1
        address add 10.1.0.1/16 dev eth1
        address delete 2001:db8::1/64 dev eth0)");
  ASSERT_EQ(printInventory("interface-names").out, "eth0\neth1\n");
  // Kernels of today allow no such name, so the first question for one is answered for them: the
  // name is the beginning of the structure that the third argument of the ioctl points to.
  const Trace trace =
      traceCommand({"-e", "trace=ioctl", "-e",
                    "inject=ioctl:retval=0:poke_exit=@arg3=657468313a323a3300:when=1"},
                   {"print_inventory", "interface-names"});
  EXPECT_EQ(trace.outcome, (Outcome{0, 0, "eth1\n", ""})) << "eth1:2:3 and eth1";
}

}  // namespace
}  // namespace addrtool::testing
