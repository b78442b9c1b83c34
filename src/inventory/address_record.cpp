#include "inventory/address_record.h"

#include <arpa/inet.h>
#include <netinet/in.h>

#include <array>
#include <bit>
#include <cstring>
#include <stdexcept>

namespace addrtool {

std::string prefixToNetmask(const AddressRecord& record) {
  // The shift count wraps at 32, so a prefix length of 0 leaves every bit set.
  const std::uint32_t shift = (32U - record.prefixLength) % 32U;
  const in_addr mask{htonl(~std::uint32_t{0} << shift)};

  std::array<char, INET_ADDRSTRLEN> text{};
  inet_ntop(AF_INET, &mask, text.data(), text.size());
  return text.data();
}

std::uint16_t netmaskToPrefix(const std::string& netmask) {
  in_addr mask{};
  if (inet_pton(AF_INET, netmask.c_str(), &mask) != 1) {
    throw std::runtime_error(netmask + ": cannot convert to netmask");
  }
  // All 32 bits of 0.0.0.0 are trailing zeros, which makes it 0.
  return static_cast<std::uint16_t>(32 - std::countr_zero(ntohl(mask.s_addr)));
}

bool isSameIPv6Address(const std::string& one, const std::string& other) {
  in6_addr left{};
  in6_addr right{};
  return inet_pton(AF_INET6, one.c_str(), &left) == 1 &&
         inet_pton(AF_INET6, other.c_str(), &right) == 1 &&
         std::memcmp(&left, &right, sizeof(left)) == 0;
}

}  // namespace addrtool
