// The request to the kernel, and every failure of it. strace watches the system calls of the real
// program and answers some instead of the kernel.
#include <linux/netlink.h>
#include <linux/rtnetlink.h>

#include <algorithm>
#include <cstdio>

#include "support/netlink_bytes.h"
#include "support/sandbox_machine.h"

namespace addrtool::testing {
namespace {

const std::string openSocket = "socket(AF_NETLINK, SOCK_DGRAM, NETLINK_ROUTE)";

// Traces `addrtool --list` with these injections.
Trace traceListing(const Lines& injections = {}) {
  Lines options{"-a1", "trace=socket,bind,sendto,sendmsg,recvfrom,recvmsg,ioctl,close,write"};
  options.insert(options.end(), injections.begin(), injections.end());
  return traceCommand(options, {"addrtool", "--list"});
}

// The descriptor of the socket: the result of the first call.
std::string socketNumber(const Lines& calls) {
  return calls.at(0).substr(calls.at(0).rfind(' ') + 1);
}

// Whether the socket was closed before anything was written.
bool isSocketClosed(const Trace& trace) {
  const Lines calls = callsBefore("write(", callsFrom(openSocket, trace.calls));
  return !callsStarting("close(" + socketNumber(calls) + ")", calls).empty();
}

TEST(KernelAddresses, TheSocketIsOpenedUsedAndClosed) {
  const Trace trace = traceListing();
  EXPECT_EQ(trace.outcome, success(freshListing));

  const Lines calls = callsFrom(openSocket, trace.calls);
  ASSERT_FALSE(calls.empty());
  const std::string number = socketNumber(calls);
  EXPECT_EQ(calls.at(0), openSocket + " = " + number);
  EXPECT_TRUE(calls.at(1).starts_with("sendto(" + number + ", ")) << calls.at(1);
  EXPECT_TRUE(calls.at(1).ends_with(", 24, 0, NULL, 0) = 24")) << calls.at(1);
  EXPECT_TRUE(isSocketClosed(trace));

  EXPECT_EQ(callsStarting("socket(AF_NETLINK", calls).size(), 1U);
  EXPECT_EQ(callsStarting("sendto(", calls).size(), 1U);
  for (const char* call : {"bind(", "sendmsg(", "recvmsg("}) {
    EXPECT_EQ(callsStarting(call, calls), Lines{});
  }
}

TEST(KernelAddresses, TheRequestIs24BytesWithTheProcessId) {
  const Trace trace = traceCommand({"-f", "trace=sendto", "write=all"}, {"addrtool", "--list"});
  // strace puts the process id before the call, and the bytes behind it.
  const auto call = std::ranges::find_if(trace.calls, [](const std::string& line) {
    return line.find(" sendto(") != std::string::npos;
  });
  ASSERT_TRUE(trace.calls.end() - call > 2);
  const auto pid = static_cast<unsigned>(std::stoul(*call));
  std::array<char, 200> dump{};
  std::snprintf(dump.data(), dump.size(),
                " | 00000  18 00 00 00 16 00 01 01  00 00 00 00 %02x %02x %02x %02x  ", pid & 0xFFU,
                pid >> 8U & 0xFFU, pid >> 16U & 0xFFU, pid >> 24U);
  EXPECT_EQ(call[1].substr(0, 60), std::string(dump.data()).substr(0, 60));
  EXPECT_TRUE(call[2].starts_with(" | 00010  00 00 00 00 00 00 00 00      ")) << call[2];
}

TEST(KernelAddresses, EveryDatagramIsReceivedOnceIntoAnEmptyBuffer) {
  addManyAddresses(600);
  const Trace trace = traceListing();
  EXPECT_EQ(trace.outcome.exitStatus, 0);

  const Lines calls = callsFrom(openSocket, trace.calls);
  const Lines receives = callsStarting("recvfrom(" + socketNumber(calls) + ", ", calls);
  EXPECT_GT(receives.size(), 4U);
  EXPECT_EQ(receives, callsStarting("recvfrom(", calls));
  for (const std::string& receive : receives) {
    EXPECT_EQ(findAll(receive, ", 8192, 0, NULL, NULL\\) = [1-9][0-9]+$").size(), 1U) << receive;
    EXPECT_EQ(receive.find("nlmsg_type=NLMSG_DONE") != std::string::npos,
              &receive == &receives.back());
  }
}

// --- failures: one message, status 1, nothing listed ---

void expectFailure(const Trace& trace, const std::string& message, bool closes = true) {
  EXPECT_EQ(trace.outcome, failure(message));
  EXPECT_EQ(isSocketClosed(trace), closes);
}

TEST(KernelAddresses, AFailingCallIsReportedAndTheSocketClosed) {
  const std::string send = "Can not send RTM_GETADDR request: ";
  const std::string receive = "Can not get RTM_GETADDR request response: ";
  const std::vector<std::pair<std::string, std::string>> rows{
      {"sendto:error=ENOBUFS", send + "No buffer space available"},
      {"recvfrom:error=ENOMEM:when=1", receive + "Cannot allocate memory"},
      {"recvfrom:error=ENOMEM:when=2", receive + "Cannot allocate memory"},
      {"recvfrom:error=EINTR:when=1", receive + "Interrupted system call"},
  };
  for (const auto& [injection, message] : rows) {
    const Trace trace = traceListing({"inject=" + injection});
    expectFailure(trace, message);
    if (injection.starts_with("sendto")) {
      EXPECT_EQ(callsStarting("recvfrom(", trace.calls), Lines{});
    }
  }
  EXPECT_EQ(traceListing({"inject=socket:error=EMFILE"}).outcome,
            failure("Fail to open netlink socket: Too many open files"));
}

TEST(KernelAddresses, AFailingCloseDoesNotChangeTheMessage) {
  const std::string socket = "inject=socket:retval=99";  // opens nothing, so its close fails
  for (const auto& [injections, request] :
       {std::pair(Lines{socket, "inject=sendto:error=ENOMEM"}, "send RTM_GETADDR request"),
        std::pair(Lines{socket, "inject=sendto:retval=24", "inject=recvfrom:error=ENOMEM"},
                  "get RTM_GETADDR request response")}) {
    const Trace trace = traceListing(injections);
    EXPECT_EQ(trace.outcome,
              failure(std::string("Can not ") + request + ": Cannot allocate memory"));
    EXPECT_EQ(callsStarting("close(99", trace.calls),
              Lines{"close(99) = -1 EBADF (Bad file descriptor)"});
  }
}

TEST(KernelAddresses, AMalformedReplyIsReportedAndTheSocketClosed) {
  const std::string address = datagramOf({{.attributes = {addressAttribute("192.0.2.9")}}});
  const Lines malformed{
      "",
      headerOnly(16, NLMSG_DONE).substr(0, 8),
      headerOnly(16, NLMSG_DONE).substr(0, 15),
      headerOnly(15, RTM_NEWADDR) + address,
      headerOnly(0, NLMSG_DONE),
      headerOnly(17, RTM_NEWADDR),
      headerOnly(8192, RTM_NEWADDR) + address,
      headerOnly(0xFFFFFFFF, NLMSG_DONE),
      headerOnly(20, NLMSG_ERROR) + std::string(4, '\xff'),  // -1; the code is not reported
  };
  for (const std::string& reply : malformed) {
    for (const int n : {1, 2}) {
      const Trace trace = traceListing({answer("recvfrom", n, reply)});
      SCOPED_TRACE(std::to_string(reply.size()) + " bytes, datagram " + std::to_string(n));
      expectFailure(trace, "Incorrect format of RTM_GETADDR request response");
    }
  }
}

TEST(KernelAddresses, AnInterfaceWithoutANameIsReportedAndTheSocketStaysOpen) {
  const std::string message = "Fail to detect interface name by index: ";
  expectFailure(traceListing({"inject=ioctl:error=EPERM:when=1"}),
                message + "Operation not permitted", false);
  for (const std::uint32_t index : {0U, 4711U}) {
    const std::string reply =
        datagramOf({{.index = index, .attributes = {addressAttribute("192.0.2.9")}}});
    expectFailure(traceListing({answer("recvfrom", 1, reply)}),
                  message + "No such device or address", false);
  }
}

// --- what is not looked at ---

const std::string loopbackAddress =
    datagramOf({{.prefixLength = 32, .attributes = {addressAttribute("192.0.2.9")}}});

TEST(KernelAddresses, OnlyTheFirstMessageOfADatagramCanEndTheDump) {
  const std::string done = headerOnly(16, NLMSG_DONE);
  const std::string line = "192.0.2.9 255.255.255.255 lo 1\n";
  for (const std::string& end : {done, headerOnly(16, NLMSG_ERROR)}) {
    EXPECT_EQ(traceListing({answer("recvfrom", 1, loopbackAddress + end)}).outcome,
              success(freshListing + line));
  }
  EXPECT_EQ(traceListing({answer("recvfrom", 1, done + loopbackAddress)}).outcome, success(line));
}

TEST(KernelAddresses, SequenceAndSenderOfAReplyAreIgnored) {
  std::string reply = headerOnly(16, NLMSG_DONE);
  reply.replace(8, 8, "sequence");
  EXPECT_EQ(traceListing({answer("recvfrom", 2, reply)}).outcome, success(freshListing));
}

}  // namespace
}  // namespace addrtool::testing
