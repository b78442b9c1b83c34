// The request to the kernel, its replies, and each failure.
#include "inventory/kernel_addresses.h"

#include <unistd.h>

#include <cerrno>
#include <utility>

#include "support/canned_machine.h"
#include "support/child_process.h"
#include "support/collect.h"
#include "support/failing_call.h"

namespace addrtool::testing {
namespace {

const std::string done = headerOnly(16, NLMSG_DONE);
const std::string oneAddress = datagramOf({ipv4()});

// What the replies add to a dump, and that each of them was received.
AddressDump dumpOf(const std::vector<Reply>& replies) {
  const CannedMachine machine(replies);
  AddressDump dump;
  readKernelAddresses(dump, false);
  EXPECT_EQ(machine.received, replies.size());
  return dump;
}

// Expects this failure, and that the socket is closed, even if close(2) fails.
void expectFailure(const CannedMachine& /*machine*/, const std::string& message, int closes = 1) {
  const FailingCall failing(Call::Close, EIO);
  AddressDump dump;
  EXPECT_EQ(failureOf([&] { readKernelAddresses(dump, false); }), message);
  EXPECT_EQ(FailingCall::calls(), closes);
}

TEST(KernelAddresses, TheRequestIs24BytesWithTheProcessId) {
  const CannedMachine machine({{done}});
  AddressDump dump;
  readKernelAddresses(dump, false);
  const struct {
    nlmsghdr header;
    ifaddrmsg message;
  } request{{24, 22, 0x0101, 0, static_cast<std::uint32_t>(getpid())}, {}};
  const char* const bytes = reinterpret_cast<const char*>(&request);
  EXPECT_EQ(machine.sent, std::vector<std::string>{std::string(bytes, 24)});
}

TEST(KernelAddresses, EveryReplyIsReadUntilTheDumpEndsAndTheSocketIsClosed) {
  const FailingCall counting(Call::Close, 0);
  EXPECT_EQ(dumpOf({{oneAddress}, {datagramOf({ipv6()})}, {done}}),
            eth0With({.primaryIPv4 = {{"192.0.2.1", 24}}, .ipv6 = {{"2001:db8::1", 64}}}));
  EXPECT_EQ(FailingCall::calls(), 1);
}

TEST(KernelAddresses, AreAddedToWhatTheDumpHolds) {
  const CannedMachine machine({ipv4()});
  AddressDump dump = eth0With({.ipv6 = {{"2001:db8::1", 64}}});
  readKernelAddresses(dump, false);
  EXPECT_EQ(dump, eth0With({.primaryIPv4 = {{"192.0.2.1", 24}}, .ipv6 = {{"2001:db8::1", 64}}}));
}

TEST(KernelAddresses, OnlyTheFirstMessageOfAReplyCanEndTheDump) {
  EXPECT_EQ(dumpOf({{oneAddress + std::string(3, '\0') + done}, {done}}), plainIPv4);
  EXPECT_EQ(dumpOf({{oneAddress + std::string(3, '\0') + headerOnly(16, NLMSG_ERROR)}, {done}}),
            plainIPv4);
  EXPECT_EQ(dumpOf({{done + oneAddress}}), plainIPv4);
}

TEST(KernelAddresses, OnlyTheTypesDoneAndErrorMatterNotFlagsSequenceOrSender) {
  std::vector<std::uint16_t> flagWords{0, 0xFFFF};
  for (unsigned bit = 0; bit < 16; ++bit)
    flagWords.push_back(static_cast<std::uint16_t>(1U << bit));
  for (const std::uint16_t flags : flagWords) {
    for (std::uint16_t type = 0; type < 64; ++type) {
      SCOPED_TRACE("type " + std::to_string(type) + ", flags " + std::to_string(flags));
      const std::string first = headerOnly(16, type, flags);
      if (type == NLMSG_ERROR) {
        expectFailure(CannedMachine({{first}}), "Incorrect format of RTM_GETADDR request response");
      } else if (type == NLMSG_DONE) {
        EXPECT_EQ(dumpOf({{first + oneAddress}}), plainIPv4);
      } else {
        EXPECT_EQ(dumpOf({{first + oneAddress}, {headerOnly(16, NLMSG_DONE, flags)}}), plainIPv4);
      }
    }
  }
}

TEST(KernelAddresses, AFailedSendOrReceiveIsReportedAndNotRepeated) {
  const std::vector<std::pair<int, std::string>> errors{
      {ENOMEM, "Cannot allocate memory"},
      {EINTR, "Interrupted system call"},
      {EAGAIN, "Resource temporarily unavailable"},
      {ENOBUFS, "No buffer space available"}};
  for (const auto& [error, text] : errors) {
    const std::string message = "Can not get RTM_GETADDR request response: " + text;
    expectFailure(CannedMachine({{"", error}}), message);
    expectFailure(CannedMachine({{oneAddress}, {"", error}}), message);
    CannedMachine machine;
    machine.sendError = error;
    expectFailure(machine, "Can not send RTM_GETADDR request: " + text);
    EXPECT_EQ(machine.sent.size(), 1U);
  }
}

TEST(KernelAddresses, AMalformedReplyIsReported) {
  for (const std::string& reply :
       {std::string(), done.substr(0, 8), done.substr(0, 15), headerOnly(0, NLMSG_DONE),
        headerOnly(15, RTM_NEWADDR) + oneAddress, headerOnly(17, RTM_NEWADDR),
        headerOnly(8192, RTM_NEWADDR) + oneAddress, headerOnly(0xFFFFFFFF, NLMSG_DONE),
        headerOnly(20, NLMSG_ERROR) + std::string(4, '\xff')}) {  // -1; the code is not reported
    const std::string message = "Incorrect format of RTM_GETADDR request response";
    expectFailure(CannedMachine({{reply}}), message);
    expectFailure(CannedMachine({{oneAddress}, {reply}}), message);
  }
}

TEST(KernelAddresses, AnInterfaceWithoutANameIsReportedAndTheSocketStaysOpen) {
  for (const auto& [index, text] :
       {std::pair(ENXIO, "No such device or address"), {ENODEV, "No such device"}}) {
    AddressMessage message = ipv4();
    message.index = static_cast<std::uint32_t>(index);
    expectFailure(CannedMachine({message}),
                  std::string("Fail to detect interface name by index: ") + text, 0);
  }
}

}  // namespace
}  // namespace addrtool::testing
