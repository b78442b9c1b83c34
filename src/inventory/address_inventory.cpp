#include "inventory/address_inventory.h"

#include <string>

#include "inventory/address_dump.h"
#include "inventory/kernel_addresses.h"

namespace addrtool {
namespace {

InterfaceRecord makeInterfaceRecord(const std::string& name, const InterfaceAddresses& addresses) {
  InterfaceRecord record{.name = name, .ipv4 = addresses.primaryIPv4, .ipv6 = addresses.ipv6};
  record.ipv4.reserve(addresses.primaryIPv4.size() + addresses.aliases.size());
  for (const auto& [suffix, address] : addresses.aliases) record.ipv4.push_back(address);
  return record;
}

}  // namespace

AddressInventory buildAddressInventory(bool includeHostScope) {
  AddressDump dump;
  readKernelAddresses(dump, includeHostScope);

  AddressInventory inventory;
  for (const auto& [name, addresses] : dump) {
    inventory.push_back(makeInterfaceRecord(name, addresses));
  }
  return inventory;
}

}  // namespace addrtool
