// The addresses of the machine by interface, as they are gathered from the kernel.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "inventory/address_record.h"

namespace addrtool {

/// Alias addresses by alias suffix: the label's text after its first colon ("1" for the label
/// eth0:1). The order is that of the bytes: "1" before "10" before "2".
using AliasMap = std::map<std::string, AddressRecord>;

/// What one interface carries.
struct InterfaceAddresses {
  AliasMap aliases = {};                        ///< IPv4 addresses whose label has a colon
  std::vector<AddressRecord> primaryIPv4 = {};  ///< plainly labelled ones, in the kernel's order
  std::vector<AddressRecord> ipv6 = {};         ///< in the kernel's order

  bool operator==(const InterfaceAddresses&) const = default;
};

/// By interface name (never by label), in the order of the bytes. An interface gets its entry
/// with its first accepted address, so no entry of a fresh dump is empty.
using AddressDump = std::map<std::string, InterfaceAddresses>;

}  // namespace addrtool
