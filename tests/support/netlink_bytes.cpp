#include "support/netlink_bytes.h"

#include <arpa/inet.h>
#include <linux/netlink.h>
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
  rtattr header{};
  const auto length = static_cast<unsigned short>(sizeof(header) + attribute.payload.size());
  header.rta_len = attribute.claimedLength.value_or(length);
  header.rta_type = attribute.type;
  return bytesOf(header) + attribute.payload;
}

std::string messageBytes(const AddressMessage& message) {
  ifaddrmsg address{};
  address.ifa_family = message.family;
  address.ifa_prefixlen = message.prefixLength;
  address.ifa_flags = message.flags;
  address.ifa_scope = message.scope;
  address.ifa_index = message.index;

  std::string body = bytesOf(address);
  for (const Attribute& attribute : message.attributes) {
    pad(body);
    body += attributeBytes(attribute);
  }
  const auto length = static_cast<std::uint32_t>(sizeof(nlmsghdr) + body.size());
  return headerOnly(message.claimedLength.value_or(length), message.type) + body;
}

}  // namespace

std::string addressBytes(const std::string& address) {
  std::array<char, sizeof(in6_addr)> bytes{};
  if (inet_pton(AF_INET, address.c_str(), bytes.data()) == 1) {
    return {bytes.data(), sizeof(in_addr)};
  }
  if (inet_pton(AF_INET6, address.c_str(), bytes.data()) == 1) {
    return {bytes.data(), sizeof(in6_addr)};
  }
  throw std::invalid_argument(address + ": no address");
}

Attribute addressAttribute(const std::string& address) {
  return {IFA_ADDRESS, addressBytes(address)};
}

Attribute localAttribute(const std::string& address) {
  return {IFA_LOCAL, addressBytes(address)};
}

Attribute labelAttribute(const std::string& label) {
  return {IFA_LABEL, label + '\0'};
}

std::string datagramOf(const std::vector<AddressMessage>& messages) {
  std::string datagram;
  for (const AddressMessage& message : messages) {
    pad(datagram);
    datagram += messageBytes(message);
  }
  return datagram;
}

std::string headerOnly(std::uint32_t claimedLength, std::uint16_t type) {
  nlmsghdr header{};
  header.nlmsg_len = claimedLength;
  header.nlmsg_type = type;
  header.nlmsg_flags = NLM_F_MULTI;
  return bytesOf(header);
}

ExactBytes::ExactBytes(const std::string& bytes) {
  const auto all = std::as_bytes(std::span(bytes));
  memory_.assign(all.begin(), all.end());
}

}  // namespace addrtool::testing
