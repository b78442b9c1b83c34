// The conversation with the kernel: what is asked for, and what happens when it goes wrong. The
// system calls of the real program are watched, and some answered in the kernel's place.
#include <gtest/gtest.h>
#include <linux/netlink.h>
#include <linux/rtnetlink.h>

#include <algorithm>
#include <cstdio>
#include <regex>
#include <string>
#include <vector>

#include "support/addresses.h"
#include "support/child_process.h"
#include "support/netlink_bytes.h"
#include "support/sandbox_machine.h"
#include "support/system_calls.h"

namespace addrtool::testing {
namespace {

using Calls = std::vector<std::string>;

const std::string openSocket = "socket(AF_NETLINK, SOCK_DGRAM, NETLINK_ROUTE)";

// Traces `addrtool --list`, with calls answered as the options say.
Trace traceListing(const std::vector<std::string>& injections = {}) {
  std::vector<std::string> options{
      "-a1", "-e", "trace=socket,bind,sendto,sendmsg,recvfrom,recvmsg,ioctl,close,write"};
  for (const std::string& injection : injections) options.insert(options.end(), {"-e", injection});
  return traceCommand(options, {"addrtool", "--list"});
}

// The number of the socket, as it stands at the end of the call that opened it.
std::string socketNumber(const Calls& calls) {
  const std::size_t blank = calls.at(0).rfind(' ');
  return calls.at(0).substr(blank + 1);
}

// Whether the socket was closed before anything was written.
bool isSocketClosed(const Trace& trace) {
  const Calls calls = callsFrom(openSocket, trace);
  const std::string close = "close(" + socketNumber(calls) + ")";
  const auto isClose = [&close](const std::string& call) { return call.starts_with(close); };
  const auto isWrite = [](const std::string& call) { return call.starts_with("write("); };
  const auto closed = std::find_if(calls.begin(), calls.end(), isClose);
  return closed < std::find_if(calls.begin(), calls.end(), isWrite);
}

TEST(KernelAddresses, TheSocketIsOpenedAskedReadAndClosed) {
  const Trace trace = traceListing();
  EXPECT_EQ(trace.outcome, (Outcome{0, 0, freshListing, ""}));

  const Calls calls = callsFrom(openSocket, trace);
  ASSERT_FALSE(calls.empty());
  const std::string number = socketNumber(calls);
  EXPECT_EQ(calls.at(0), openSocket + " = " + number);
  EXPECT_TRUE(calls.at(1).starts_with("sendto(" + number + ", ")) << calls.at(1);
  EXPECT_TRUE(calls.at(1).ends_with(", 24, 0, NULL, 0) = 24")) << calls.at(1);
  EXPECT_TRUE(isSocketClosed(trace));

  EXPECT_EQ(callsStarting("bind(", calls), Calls{});
  EXPECT_EQ(callsStarting("socket(AF_NETLINK", calls).size(), 1U);
  EXPECT_EQ(callsStarting("sendto(", calls).size(), 1U);
  EXPECT_EQ(callsStarting("sendmsg(", calls), Calls{});
  EXPECT_EQ(callsStarting("recvmsg(", calls), Calls{});
}

TEST(KernelAddresses, TheRequestIs24BytesWithTheProcessId) {
  const Trace trace =
      traceCommand({"-f", "-e", "trace=sendto", "-e", "write=all"}, {"addrtool", "--list"});
  // strace puts the process id before the call, and the bytes behind it.
  const auto call = std::find_if(
      trace.calls.begin(), trace.calls.end(),
      [](const std::string& line) { return line.find(" sendto(") != std::string::npos; });
  ASSERT_TRUE(trace.calls.end() - call > 2);
  const auto pid = static_cast<unsigned>(std::stoul(*call));
  std::array<char, 200> dump{};
  std::snprintf(dump.data(), dump.size(),
                " | 00000  18 00 00 00 16 00 01 01  00 00 00 00 %02x %02x %02x %02x  ", pid & 0xFFU,
                pid >> 8U & 0xFFU, pid >> 16U & 0xFFU, pid >> 24U);
  EXPECT_EQ(call[1].substr(0, 60), std::string(dump.data()).substr(0, 60));
  EXPECT_TRUE(call[2].starts_with(" | 00010  00 00 00 00 00 00 00 00      ")) << call[2];
}

TEST(KernelAddresses, EveryDatagramIsReceivedOnceIntoTheWholeBuffer) {
  std::string commands;
  for (int n = 0; n < 600; ++n) {
    commands += "address add 10.0." + std::to_string(n / 250) + '.' + std::to_string(n % 250) +
                "/32 dev eth0\n";
  }
  ip(commands);
  const Trace trace = traceListing();
  EXPECT_EQ(trace.outcome.exitStatus, 0);

  const Calls calls = callsFrom(openSocket, trace);
  const Calls receives = callsStarting("recvfrom(" + socketNumber(calls) + ", ", calls);
  EXPECT_GT(receives.size(), 4U);
  EXPECT_EQ(receives, callsStarting("recvfrom(", calls));
  const std::regex whole(".*, 8192, 0, NULL, NULL\\) = [1-9][0-9]+");
  for (const std::string& receive : receives) {
    EXPECT_TRUE(std::regex_match(receive, whole)) << receive;
    EXPECT_EQ(receive.find("nlmsg_type=NLMSG_DONE") != std::string::npos,
              &receive == &receives.back());
  }
}

// --- failures: one message, status 1, nothing listed ---

void expectFailure(const Trace& trace, const std::string& message) {
  EXPECT_EQ(trace.outcome, (Outcome{1, 0, "", message + "\n"}));
}

TEST(KernelAddresses, AFailingSocketIsReported) {
  expectFailure(traceListing({"inject=socket:error=EMFILE"}),
                "Fail to open netlink socket: Too many open files");
}

TEST(KernelAddresses, AFailingSendIsReportedAndTheSocketClosed) {
  const Trace trace = traceListing({"inject=sendto:error=ENOBUFS"});
  expectFailure(trace, "Can not send RTM_GETADDR request: No buffer space available");
  EXPECT_TRUE(isSocketClosed(trace));
  EXPECT_EQ(callsStarting("recvfrom(", trace.calls), Calls{});
}

TEST(KernelAddresses, AFailingReceiveIsReportedAndTheSocketClosed) {
  for (const char* when : {"1", "2"}) {
    const Trace trace = traceListing({std::string("inject=recvfrom:error=ENOMEM:when=") + when});
    expectFailure(trace, "Can not get RTM_GETADDR request response: Cannot allocate memory");
    EXPECT_TRUE(isSocketClosed(trace));
  }
}

TEST(KernelAddresses, AnInterruptedReceiveIsAFailureToo) {
  expectFailure(traceListing({"inject=recvfrom:error=EINTR:when=1"}),
                "Can not get RTM_GETADDR request response: Interrupted system call");
}

TEST(KernelAddresses, AFailingCloseDoesNotChangeTheMessage) {
  // The loader closes files of its own before the socket is opened.
  const Trace rehearsal = traceListing({"inject=recvfrom:error=ENOMEM"});
  const auto all = callsStarting("close(", rehearsal.calls).size();
  const auto late = callsStarting("close(", callsFrom(openSocket, rehearsal)).size();
  const Trace trace =
      traceListing({"inject=recvfrom:error=ENOMEM",
                    "inject=close:error=EIO:when=" + std::to_string(all - late + 1)});
  expectFailure(trace, "Can not get RTM_GETADDR request response: Cannot allocate memory");
  const Calls calls = callsFrom(openSocket, trace);
  EXPECT_EQ(callsStarting("close(", calls).at(0),
            "close(" + socketNumber(calls) + ") = -1 EIO (Input/output error) (INJECTED)");
}

TEST(KernelAddresses, AReplyThatCannotBeIsReportedAndTheSocketClosed) {
  const std::string address = datagramOf({{.attributes = {addressAttribute("192.0.2.9")}}});
  const std::vector<std::string> replies{
      "",
      headerOnly(16, NLMSG_DONE).substr(0, 8),
      headerOnly(16, NLMSG_DONE).substr(0, 15),
      headerOnly(15, RTM_NEWADDR) + address,
      headerOnly(0, NLMSG_DONE),
      headerOnly(17, RTM_NEWADDR),
      headerOnly(8192, RTM_NEWADDR) + address,
      headerOnly(0xFFFFFFFF, NLMSG_DONE),
  };
  for (const std::string& reply : replies) {
    for (const int n : {1, 2}) {
      const Trace trace = traceListing({answer("recvfrom", n, reply)});
      expectFailure(trace, "Incorrect format of RTM_GETADDR request response");
      EXPECT_TRUE(isSocketClosed(trace)) << reply.size() << " bytes, datagram " << n;
    }
  }
}

TEST(KernelAddresses, AnErrorInPlaceOfAReplyIsReportedWithoutItsCode) {
  const std::string noPermission(4, '\xff');  // -1: an error's code is negative
  const Trace trace =
      traceListing({answer("recvfrom", 1, headerOnly(20, NLMSG_ERROR) + noPermission)});
  expectFailure(trace, "Incorrect format of RTM_GETADDR request response");
  EXPECT_TRUE(isSocketClosed(trace));
}

TEST(KernelAddresses, AnInterfaceWithoutANameIsReportedAndTheSocketLeftOpen) {
  const Trace trace = traceListing({"inject=ioctl:error=EPERM:when=1"});
  expectFailure(trace, "Fail to detect interface name by index: Operation not permitted");
  EXPECT_FALSE(isSocketClosed(trace));
}

TEST(KernelAddresses, AnIndexThatTheKernelDoesNotKnowIsReported) {
  for (const std::uint32_t index : {0U, 4711U}) {
    const std::string reply =
        datagramOf({{.index = index, .attributes = {addressAttribute("192.0.2.9")}}});
    const Trace trace = traceListing({answer("recvfrom", 1, reply)});
    expectFailure(trace, "Fail to detect interface name by index: No such device or address");
    EXPECT_FALSE(isSocketClosed(trace));
  }
}

// --- what is not looked at ---

const std::string loopbackAddress =
    datagramOf({{.prefixLength = 32, .attributes = {addressAttribute("192.0.2.9")}}});

TEST(KernelAddresses, OnlyTheFirstMessageEndsTheDump) {
  for (const int type : {NLMSG_DONE, NLMSG_ERROR}) {
    const std::string reply = loopbackAddress + headerOnly(16, static_cast<std::uint16_t>(type));
    const Trace trace = traceListing({answer("recvfrom", 1, reply)});
    EXPECT_EQ(trace.outcome,
              (Outcome{0, 0, freshListing + "192.0.2.9 255.255.255.255 lo 1\n", ""}));
  }
}

TEST(KernelAddresses, TheLastDatagramsAddressesCountToo) {
  const Trace trace =
      traceListing({answer("recvfrom", 1, headerOnly(16, NLMSG_DONE) + loopbackAddress)});
  EXPECT_EQ(trace.outcome, (Outcome{0, 0, "192.0.2.9 255.255.255.255 lo 1\n", ""}));
}

TEST(KernelAddresses, SequenceAndSenderOfAReplyAreNotLookedAt) {
  std::string reply = headerOnly(16, NLMSG_DONE);
  reply.replace(8, 8, "sequence");
  EXPECT_EQ(traceListing({answer("recvfrom", 2, reply)}).outcome,
            (Outcome{0, 0, freshListing, ""}));
}

}  // namespace
}  // namespace addrtool::testing
