#include <fcntl.h>
#include <unistd.h>

#include <cstdlib>

#include "support/sandbox_machine.h"

namespace addrtool::testing {
namespace {

const std::string line1 = "192.0.2.1 255.255.255.0 eth0 1\n";
const std::string lineIPv6 = "2001:db8::1 64 eth0 0\n";

TEST(Listing, HasTheManagedAddressesInOrder) {
  struct Row {
    std::string rule;
    std::string commands;  // of ip(8)
    std::string listing;
  };
  const std::vector<Row> rows{
      {"only loopback", "link delete eth0", ""},
      {"aliases in text order, of which the first is primary",
       R"(link add eth1 type veth peer name peer1
          address add 10.1.0.2/16 dev eth1 label eth1:2
          address add 10.1.0.10/16 dev eth1 label eth1:10
          address add 10.1.0.1/16 dev eth1 label eth1:1
          address add 10.1.0.3/16 dev eth1 label eth1:web:2)",
       freshListing + "10.1.0.1 255.255.0.0 eth1 1\n10.1.0.10 255.255.0.0 eth1 0\n"
                      "10.1.0.2 255.255.0.0 eth1 0\n10.1.0.3 255.255.0.0 eth1 0\n"},
      {"plain addresses first, in the order of the kernel",
       R"(address flush dev eth0
          address add 192.0.2.1/24 dev eth0 label eth0:1
          address add 198.51.100.9/24 dev eth0
          address add 198.51.100.1/24 dev eth0
          address add 192.0.2.2/24 dev eth0)",
       "198.51.100.9 255.255.255.0 eth0 1\n198.51.100.1 255.255.255.0 eth0 0\n"
       "192.0.2.2 255.255.255.0 eth0 0\n192.0.2.1 255.255.255.0 eth0 0\n"},
      {"the first of two addresses with one label",
       R"(address add 192.0.2.2/24 dev eth0 label eth0:1
          address add 192.0.2.3/24 dev eth0 label eth0:1)",
       line1 + "192.0.2.2 255.255.255.0 eth0 0\n" + lineIPv6},
      {"interfaces in the order of their names",
       R"(link delete eth0
          link add eth1 type veth peer name peer1
          link add eth0 type veth peer name peer0
          link add eth10 type veth peer name peer10
          address add 192.0.2.11/24 dev eth1
          address add 2001:db8::11/64 dev eth1 nodad
          address add 192.0.2.110/24 dev eth10
          address add 192.0.2.10/24 dev eth0
          address add 2001:db8::10/64 dev eth0 nodad
          address add 10.0.0.1/32 dev lo)",
       "192.0.2.10 255.255.255.0 eth0 1\n2001:db8::10 64 eth0 0\n"
       "192.0.2.11 255.255.255.0 eth1 1\n2001:db8::11 64 eth1 0\n"
       "192.0.2.110 255.255.255.0 eth10 1\n10.0.0.1 255.255.255.255 lo 1\n"},
      {"prefix length 0 as the netmask of 32",
       R"(address add 198.51.100.32/32 dev eth0
          address add 203.0.113.1/0 dev eth0
          address add 192.0.2.2/24 dev eth0)",
       line1 + "198.51.100.32 255.255.255.255 eth0 0\n203.0.113.1 255.255.255.255 eth0 0\n" +
           "192.0.2.2 255.255.255.0 eth0 0\n" + lineIPv6},
      {"IPv6 prefix lengths in decimal",
       R"(address delete 2001:db8::1/64 dev eth0
          link add eth1 type veth peer name peer1
          address add 2001:db8:128::1/128 dev eth0 nodad
          address add 2001:DB8:0:0:1:0:0:1/7 dev eth1 nodad)",
       line1 + "2001:db8:128::1 128 eth0 0\n2001:db8::1:0:0:1 7 eth1 0\n"},
      {"the own address of a point-to-point link",
       R"(address add 10.9.9.1 peer 10.9.9.2/32 dev eth0
          address add 2001:db8:9::1 peer 2001:db8:9::2/128 dev eth0 nodad)",
       line1 + "10.9.9.1 255.255.255.255 eth0 0\n2001:db8:9::1 128 eth0 0\n" + lineIPv6},
      {"global scope only",
       R"(address add 10.0.0.1/32 dev eth0 scope link
          address add 10.0.0.2/32 dev eth0 scope host
          address add 10.0.0.3/32 dev eth0 scope 200
          address add 127.0.5.5/32 dev eth0 scope global
          address add fe80::5/64 dev eth0 nodad
          address add fec0::5/64 dev eth0 nodad)",
       line1 + "127.0.5.5 255.255.255.255 eth0 0\n" + lineIPv6},
      {"not the address ::2, nor an interface without another",
       R"(link add eth1 type veth peer name peer1
          address add ::2/128 dev eth1 nodad
          address flush dev eth0
          address add ::2/128 dev eth0 nodad
          address add ::3/128 dev eth0 nodad)",
       "::3 128 eth0 0\n"},
  };
  for (const auto& [rule, commands, listing] : rows) {
    resetMachine();
    ip(commands);
    EXPECT_EQ(runAddrtool({"--list"}), success(listing)) << rule;
  }
}

TEST(Listing, LacksTemporaryAndLimitedIPv6Addresses) {
  prepare("echo 2 >/proc/sys/net/ipv6/conf/eth0/use_tempaddr");
  ip(R"(address delete 2001:db8::1/64 dev eth0
        address add 2001:db8::a/64 dev eth0 nodad valid_lft 1000 preferred_lft 500
        address add 2001:db8:2::1/64 dev eth0 nodad mngtmpaddr)");
  ASSERT_NE(runShell("ip -6 address show dev eth0 temporary").out, "");
  EXPECT_EQ(runAddrtool({"-l"}), success(line1 + "2001:db8:2::1 64 eth0 0\n"));
}

TEST(Listing, MakesOneReceivePerDatagramAndOneWritePerLine) {
  addManyAddresses(2000, true);
  const Trace trace = traceCommand({"trace=!%memory"}, {"addrtool", "--list"});
  EXPECT_EQ(trace.outcome.exitStatus, 0);

  const auto calls = callsFrom("socket(AF_NETLINK", trace.calls);
  const auto receives = callsStarting("recvfrom(", calls).size();
  const auto writes = callsStarting("write(", calls).size();
  EXPECT_EQ(writes, 2002U);
  EXPECT_GT(receives, 10U);
  EXPECT_LT(receives, 200U);
  EXPECT_LE(calls.size() - receives - writes, 12U);  // sanitizers add a few
}

TEST(Listing, ContinuesAfterAShortOrInterruptedWriteAndStopsAtAFailure) {
  ip("link add eth1 type bridge\naddress add 10.1.0.1/24 dev eth1");
  const std::string whole = freshListing + "10.1.0.1 255.255.255.0 eth1 1\n";
  struct Row {
    Lines injections;
    std::string printed;
    std::size_t writes;
  };
  const std::vector<Row> rows{
      {{"write:retval=5:when=1"}, whole.substr(5), 4},
      {{"write:error=EINTR:when=1"}, whole, 4},
      {{"write:error=EINTR:when=2"}, whole, 4},
      {{"write:error=EAGAIN:when=1", "/poll:error=EINTR:when=1"}, whole, 4},
      {{"write:error=EAGAIN:when=2", "/poll:error=ENOMEM"}, line1, 2},
      {{"write:retval=0:when=2"}, line1, 2},
      {{"write:error=ENOSPC:when=1"}, "", 1},
      {{"write:error=ENOSPC:when=2"}, line1, 2},
  };
  for (const auto& [injections, printed, writes] : rows) {
    Lines options{"trace=write,/poll"};
    for (const std::string& call : injections) options.push_back("inject=" + call);
    const auto [outcome, calls] = traceCommand(options, {"addrtool", "-l"});
    EXPECT_EQ(outcome, success(printed)) << injections[0];
    EXPECT_EQ(callsStarting("write(1, ", calls).size(), writes) << injections[0];
    EXPECT_EQ(callsStarting("poll(", calls),
              callsStarting("poll([{fd=1, events=POLLOUT}], 1, -1)", calls));
  }
}

// A result of 0 sets no errno. The close of the socket, right before it, leaves EINTR there.
TEST(Listing, StopsAtAWriteOfNothingWhateverErrnoSays) {
  const Lines calls = traceCommand({"trace=close,write"}, {"addrtool", "-l"}).calls;
  const auto closes = callsStarting("close(", callsBefore("write(1, ", calls)).size();
  EXPECT_EQ(traceCommand({"trace=close,write", "inject=write:retval=0:when=1",
                          "inject=close:error=EINTR:when=" + std::to_string(closes)},
                         {"addrtool", "-l"})
                .outcome,
            silentSuccess);
}

// Runs the listing with a non-blocking pipe as its output. A slow reader lets the pipe fill up.
Outcome listThroughNonBlockingPipe() {
  return runInChild([] {
    std::FILE* const reader = popen(R"(/usr/bin/python3 -c 'import os, time
while text := os.read(0, 4096): os.write(1, text); time.sleep(0.002)')",
                                    "we");
    fcntl(fileno(reader), F_SETFL, O_NONBLOCK);
    dup2(fileno(reader), STDOUT_FILENO);
    const int status = std::system("addrtool --list");
    close(STDOUT_FILENO);
    pclose(reader);
    _exit(status);
  });
}

TEST(Listing, HasThousandsOfAddressesInOrderEvenThroughAFullNonBlockingPipe) {
  std::string expected = line1;
  for (const std::string& address : addManyAddresses(5000)) {
    expected += address + " 255.255.255.255 eth0 0\n";
  }
  expected += lineIPv6;
  ASSERT_GT(expected.size(), 2U * 65536U) << "more than the pipe holds";
  // Not EXPECT_EQ, which would print all of them.
  EXPECT_TRUE(runAddrtool({"-l"}) == success(expected));
  EXPECT_TRUE(listThroughNonBlockingPipe() == success(expected));
}

}  // namespace
}  // namespace addrtool::testing
