// An IP address with its prefix length, the conversions between a prefix length and a dotted IPv4
// netmask, and the comparison of IPv6 addresses.
#pragma once

#include <cstdint>
#include <string>

namespace addrtool {

/// One address. An IPv4 netmask is never stored; prefixToNetmask derives it.
struct AddressRecord {
  std::string address;  ///< as inet_ntop(3) prints it, or as the user typed it
  /// In bits. The kernel reports 0..32 for IPv4 and 0..128 for IPv6; the user may type more.
  std::uint16_t prefixLength = {};

  bool operator==(const AddressRecord&) const = default;
};

/// Returns the dotted IPv4 netmask of the record's prefix length: 24 gives "255.255.255.0". Both 0
/// and 32 give "255.255.255.255"; the panel and its files rely on that. Not for IPv6 records.
std::string prefixToNetmask(const AddressRecord& record);

/// Returns the prefix length of a dotted IPv4 netmask: the position of its lowest set bit, counted
/// from the most significant bit, or 0 for "0.0.0.0". Gaps in the mask are ignored: "255.0.255.0"
/// gives 24. Raises std::runtime_error, the text followed by ": cannot convert to netmask", when
/// inet_pton(3) rejects the text.
std::uint16_t netmaskToPrefix(const std::string& netmask);

/// Returns the IPv6 address with its prefix length, as commands and configuration files write it:
/// "2001:db8::5/64".
std::string formatIPv6Entry(const AddressRecord& record);

/// Whether both texts mean the same IPv6 address: inet_pton(3) converts them to the same 16 bytes.
/// A text that it rejects equals nothing.
bool isSameIPv6Address(const std::string& one, const std::string& other);

}  // namespace addrtool
