#include "inventory/kernel_addresses.h"

#include <linux/netlink.h>
#include <linux/rtnetlink.h>
#include <net/if.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstddef>
#include <cstring>
#include <span>
#include <stdexcept>
#include <string>

#include "inventory/address_dump.h"
#include "inventory/address_messages.h"

namespace addrtool {
namespace {

constexpr std::size_t longestDatagram = 8192;
using Buffer = std::array<std::byte, longestDatagram>;

struct AddressRequest {
  nlmsghdr header;
  ifaddrmsg message;
};
static_assert(sizeof(AddressRequest) == 24);

std::runtime_error systemFailure(const char* what) {
  const char* error = std::strerror(errno);  // first, because an allocation may change errno
  return std::runtime_error(std::string(what) + error);
}

[[noreturn]] void closeAndRaise(int socketFd, const std::runtime_error& failure) {
  close(socketFd);
  throw failure;
}

void sendRequest(int socketFd, Buffer& buffer) {
  AddressRequest request{};
  request.header.nlmsg_len = sizeof(request);
  request.header.nlmsg_type = RTM_GETADDR;
  request.header.nlmsg_flags = NLM_F_REQUEST | NLM_F_ROOT;
  request.header.nlmsg_pid = static_cast<__u32>(getpid());
  std::memcpy(buffer.data(), &request, sizeof(request));
  if (send(socketFd, buffer.data(), sizeof(request), 0) == -1) {
    closeAndRaise(socketFd, systemFailure("Can not send RTM_GETADDR request: "));
  }
}

std::span<const std::byte> receiveDatagram(int socketFd, Buffer& buffer) {
  const ssize_t received = recv(socketFd, buffer.data(), buffer.size(), 0);
  if (received == -1) {
    closeAndRaise(socketFd, systemFailure("Can not get RTM_GETADDR request response: "));
  }
  return std::span(buffer).first(static_cast<std::size_t>(received));
}

std::string nameOfInterface(unsigned index) {
  std::array<char, IF_NAMESIZE> name{};
  if (if_indextoname(index, name.data()) == nullptr) {
    throw systemFailure("Fail to detect interface name by index: ");
  }
  return name.data();
}

}  // namespace

void readKernelAddresses(AddressDump& dump, bool includeHostScope) {
  const int socketFd = socket(AF_NETLINK, SOCK_DGRAM, NETLINK_ROUTE);
  if (socketFd == -1) throw systemFailure("Fail to open netlink socket: ");

  Buffer buffer{};  // holds the request, then each reply
  sendRequest(socketFd, buffer);

  AddressCollector collector(dump, includeHostScope, nameOfInterface);
  DatagramKind kind = DatagramKind::Addresses;
  while (kind == DatagramKind::Addresses) {
    const auto datagram = receiveDatagram(socketFd, buffer);
    kind = classifyDatagram(datagram);
    if (kind == DatagramKind::Malformed) {
      closeAndRaise(socketFd,
                    std::runtime_error("Incorrect format of RTM_GETADDR request response"));
    }
    // If the name lookup throws, the socket stays open; the process is about to exit.
    collector.collect(datagram);
  }
  close(socketFd);
}

}  // namespace addrtool
