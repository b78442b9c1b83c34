#include "inventory/address_record.h"

#include <arpa/inet.h>
#include <netinet/in.h>

#include <array>
#include <bit>
#include <cstdint>
#include <cstring>
#include <stdexcept>
#include <string>

namespace addrtool {
namespace {

constexpr unsigned ipv4Bits = 32;

}  // namespace

std::string prefixToNetmask(const AddressRecord& record) {
  // The shift count wraps, so a prefix length of 0 leaves every bit set.
  const std::uint32_t shift = (ipv4Bits - record.prefixLength) % ipv4Bits;
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
  // All bits of 0.0.0.0 are trailing zeros, which gives 0.
  const auto trailingZeros = static_cast<unsigned>(std::countr_zero(ntohl(mask.s_addr)));
  return static_cast<std::uint16_t>(ipv4Bits - trailingZeros);
}

std::string formatIPv6Entry(const AddressRecord& record) {
  return record.address + '/' + std::to_string(record.prefixLength);
}

bool isSameIPv6Address(const std::string& one, const std::string& other) {
  in6_addr left{};
  in6_addr right{};
  return inet_pton(AF_INET6, one.c_str(), &left) == 1 &&
         inet_pton(AF_INET6, other.c_str(), &right) == 1 &&
         std::memcmp(&left, &right, sizeof(left)) == 0;
}

}  // namespace addrtool
