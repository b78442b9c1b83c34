#include "support/netlink_bytes.h"

#include <arpa/inet.h>
#include <netinet/in.h>

#include <array>
#include <cstring>
#include <stdexcept>

namespace addrtool::testing {
namespace {

template <typename T>
std::string bytesOf(const T& value) {
  std::string bytes(sizeof(T), '\0');
  std::memcpy(bytes.data(), &value, sizeof(T));
  return bytes;
}

void pad(std::string& bytes) {
  bytes.resize((bytes.size() + 3) / 4 * 4);
}

std::string attributeBytes(const Attribute& attribute) {
  const auto length = static_cast<std::uint16_t>(sizeof(rtattr) + attribute.payload.size());
  const rtattr header{attribute.claimedLength.value_or(length), attribute.type};
  return bytesOf(header) + attribute.payload;
}

std::string messageBytes(const AddressMessage& message) {
  std::string body = bytesOf(
      ifaddrmsg{message.family, message.prefixLength, message.flags, message.scope, message.index});
  for (const Attribute& attribute : message.attributes) {
    pad(body);
    body += attributeBytes(attribute);
  }
  const auto length = static_cast<std::uint32_t>(sizeof(nlmsghdr) + body.size());
  return headerOnly(message.claimedLength.value_or(length), message.type, message.messageFlags) +
         body;
}

}  // namespace

std::string addressBytes(const std::string& address) {
  std::array<char, sizeof(in6_addr)> bytes{};
  const bool isIPv6 = address.find(':') != std::string::npos;
  if (inet_pton(isIPv6 ? AF_INET6 : AF_INET, address.c_str(), bytes.data()) != 1) {
    throw std::invalid_argument(address + ": no address");
  }
  return {bytes.data(), isIPv6 ? sizeof(in6_addr) : sizeof(in_addr)};
}

std::string datagramOf(const std::vector<AddressMessage>& messages) {
  std::string datagram;
  for (const AddressMessage& message : messages) {
    pad(datagram);
    datagram += messageBytes(message);
  }
  return datagram;
}

std::string headerOnly(std::uint32_t claimedLength, std::uint16_t type, std::uint16_t flags) {
  return bytesOf(nlmsghdr{claimedLength, type, flags, 4711, 4711});
}

}  // namespace addrtool::testing
