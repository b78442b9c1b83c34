// The addresses of the machine in the order of the listing.
#pragma once

#include <string>
#include <vector>

#include "inventory/address_record.h"

namespace addrtool {

/// One interface. Its primary address is the first of `ipv4`; IPv6 addresses are never primary.
struct InterfaceRecord {
  std::string name;
  std::vector<AddressRecord> ipv4;  ///< the primary ones, then the aliases by suffix
  std::vector<AddressRecord> ipv6;  ///< in the kernel's order
};

/// Sorted by the bytes of the interface names.
using AddressInventory = std::vector<InterfaceRecord>;

/// Reads the kernel's addresses. With `includeHostScope`, the result includes loopback addresses.
/// Raises what readKernelAddresses raises.
AddressInventory buildAddressInventory(bool includeHostScope);

}  // namespace addrtool
