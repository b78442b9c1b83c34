// One IP address of the machine, in the one form in which the program carries it,
// and the two ways between a prefix length and a dotted IPv4 netmask.
#pragma once

#include <cstdint>
#include <string>

namespace addrtool {

/// One configured address. An IPv4 netmask is never stored: it is derived from the prefix length.
struct AddressRecord {
  std::string address;  ///< as inet_ntop(3) prints it, or as the user typed it
  std::uint16_t prefixLength =
      0;  ///< bits: 0..32 for IPv4, 0..128 for IPv6 when the kernel said so

  bool operator==(const AddressRecord&) const = default;
};

/// The dotted IPv4 netmask of the record's prefix length (24 gives "255.255.255.0").
/// A length of 0 gives "255.255.255.255", as 32 does: the panel and the files it wrote rely on it.
/// Only meaningful for IPv4 records.
std::string prefixToNetmask(const AddressRecord& record);

/// The prefix length of a dotted IPv4 netmask: the position of its lowest set bit, counted from
/// the most significant end, 0 for "0.0.0.0". Gaps in the mask are not looked at ("255.0.255.0"
/// gives 24). Raises std::runtime_error, the text followed by ": cannot convert to netmask", for
/// a text that inet_pton(3) does not take as an IPv4 address.
std::uint16_t netmaskToPrefix(const std::string& netmask);

/// The IPv6 address with its prefix length, as commands and configuration files write it:
/// "2001:db8::5/64".
std::string formatIPv6Entry(const AddressRecord& record);

/// Whether two texts are the same IPv6 address, however it is written: both convert with
/// inet_pton(3) to the same 16 bytes. A text that does not convert is equal to nothing.
bool isSameIPv6Address(const std::string& one, const std::string& other);

}  // namespace addrtool
