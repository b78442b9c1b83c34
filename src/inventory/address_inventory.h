// The machine's addresses in the order in which they are shown.
#pragma once

#include <string>
#include <vector>

#include "inventory/address_record.h"

namespace addrtool {

/// One interface. Its primary address is the first of `ipv4`; IPv6 addresses are never primary.
struct InterfaceRecord {
  std::string name;
  std::vector<AddressRecord> ipv4;  ///< plainly labelled ones, then aliases in suffix order
  std::vector<AddressRecord> ipv6;  ///< in the kernel's order
};

/// In ascending order of interface name, byte by byte.
using AddressInventory = std::vector<InterfaceRecord>;

/// Reads the kernel's addresses afresh. `includeHostScope` takes loopback addresses in too.
/// Raises what readKernelAddresses raises.
AddressInventory buildAddressInventory(bool includeHostScope);

}  // namespace addrtool
