// Builds the bytes of valid and invalid rtnetlink datagrams.
#pragma once

#include <linux/if_addr.h>
#include <linux/netlink.h>
#include <linux/rtnetlink.h>
#include <sys/socket.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace addrtool::testing {

/// One attribute of an address message.
struct Attribute {
  std::uint16_t type = IFA_UNSPEC;
  std::string payload;
  std::optional<std::uint16_t> claimedLength = {};  ///< in place of the true one, padding excluded
};

/// The bytes of an IPv4 or IPv6 address, as inet_pton(3) returns them. Throws for any other text.
std::string addressBytes(const std::string& address);

inline Attribute addressAttribute(const std::string& address) {
  return {IFA_ADDRESS, addressBytes(address)};
}
inline Attribute localAttribute(const std::string& address) {
  return {IFA_LOCAL, addressBytes(address)};
}
/// A label with its NUL, as the kernel sends it.
inline Attribute labelAttribute(const std::string& label) {
  return {IFA_LABEL, label + '\0'};
}

/// One address message. Its defaults are those of a plain address that an administrator added.
struct AddressMessage {
  std::uint8_t family = AF_INET;
  std::uint8_t prefixLength = 24;
  std::uint8_t flags = IFA_F_PERMANENT;
  std::uint8_t scope = RT_SCOPE_UNIVERSE;
  std::uint32_t index = 1;
  std::vector<Attribute> attributes = {};
  std::uint16_t type = RTM_NEWADDR;
  std::uint16_t messageFlags = NLM_F_MULTI;
  std::optional<std::uint32_t> claimedLength = {};  ///< in place of the true one
};

/// The datagram with these messages, each but the last padded to a multiple of 4.
std::string datagramOf(const std::vector<AddressMessage>& messages);

/// A message header without a body. Its sequence number and its sender make no sense.
std::string headerOnly(std::uint32_t claimedLength, std::uint16_t type,
                       std::uint16_t flags = NLM_F_MULTI);

/// A copy of the bytes in heap memory of exactly their size. So the address sanitizer finds each
/// read outside of them.
class ExactBytes {
 public:
  explicit ExactBytes(const std::string& bytes) {
    const auto all = std::as_bytes(std::span(bytes));
    memory_.assign(all.begin(), all.end());
  }
  std::span<const std::byte> span() const { return memory_; }

 private:
  std::vector<std::byte> memory_;
};

}  // namespace addrtool::testing
