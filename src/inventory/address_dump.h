// The addresses of the machine by interface, as the kernel reports them.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "inventory/address_record.h"

namespace addrtool {

/// Alias addresses by alias suffix: the label's text after its first colon ("1" for the label
/// eth0:1). Sorted by bytes: "1" before "10" before "2".
using AliasMap = std::map<std::string, AddressRecord>;

/// The addresses of one interface.
struct InterfaceAddresses {
  AliasMap aliases = {};                        ///< the IPv4 addresses whose label has a colon
  std::vector<AddressRecord> primaryIPv4 = {};  ///< all other IPv4 addresses, in the kernel's order
  std::vector<AddressRecord> ipv6 = {};         ///< in the kernel's order

  bool operator==(const InterfaceAddresses&) const = default;
};

/// Maps each interface name (never a label) to its addresses, sorted by bytes. An interface gets
/// its entry with its first accepted address, so no entry of a fresh dump is empty.
using AddressDump = std::map<std::string, InterfaceAddresses>;

}  // namespace addrtool
