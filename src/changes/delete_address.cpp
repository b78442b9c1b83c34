#include "changes/delete_address.h"

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <stdexcept>
#include <string>
#include <vector>

#include "changes/ifconfig.h"
#include "inventory/address_dump.h"
#include "inventory/address_record.h"
#include "inventory/kernel_addresses.h"
#include "persist/alias_file.h"
#include "persist/ipv6_list.h"

namespace addrtool {
namespace {

void deleteAlias(const std::string& interface, const AliasMap& aliases, const std::string& suffix) {
  const std::string label = interface + ':' + suffix;
  takeDownAlias(label);
  removeAliasFile(label);
  restoreAliases(interface, aliases, suffix);
}

void deleteIPv6FromInterface(const std::string& interface, const AddressRecord& record,
                             const std::string& addressAsTyped) {
  constexpr std::uint16_t ignoredLength = 32;  // the removal only uses the address text
  removeIPv6FromRunningInterface(interface, record);
  removeIPv6FromInterfaceFile(
      {.label = interface, .address = {.address = addressAsTyped, .prefixLength = ignoredLength}});
}

}  // namespace

void deleteAddress(const std::string& address) {
  if (address.find(':') == std::string::npos) {
    deleteIPv4Address(address);
  } else {
    deleteIPv6Address(address);
  }
}

void deleteIPv4Address(const std::string& address) {
  AddressDump dump;
  readKernelAddresses(dump, false);
  for (const auto& [interface, addresses] : dump) {
    if (std::ranges::count(addresses.primaryIPv4, address, &AddressRecord::address) != 0) {
      throw std::runtime_error(address + ": cannot delete main IP on interface");
    }
    for (const auto& [suffix, record] : addresses.aliases) {
      if (record.address != address) continue;
      deleteAlias(interface, addresses.aliases, suffix);
      return;
    }
  }
  throw std::runtime_error(address + ": not configured.");
}

void deleteIPv6Address(const std::string& address) {
  AddressDump dump;
  readKernelAddresses(dump, false);
  for (const auto& [interface, addresses] : dump) {
    const auto found = std::ranges::find_if(addresses.ipv6, [&](const AddressRecord& record) {
      return isSameIPv6Address(record.address, address);
    });
    if (found == addresses.ipv6.end()) continue;
    if (addresses.ipv6.size() == 1) {
      throw std::runtime_error(address + ": cannot remove last address from " + interface);
    }
    deleteIPv6FromInterface(interface, *found, address);
    return;
  }
  throw std::runtime_error(address + ": not configured");
}

void restoreAliases(const std::string& interface, const AliasMap& snapshot,
                    const std::string& deletedSuffix) {
  if (snapshot.size() < 2) return;
  AddressDump dump;
  readKernelAddresses(dump, false);
  const AliasMap& present = dump[interface].aliases;  // empty if the interface lost all addresses

  std::vector<AliasMap::value_type> vanished;  // one pass over both maps, which are sorted alike
  std::ranges::set_difference(snapshot, present, std::back_inserter(vanished), {},
                              &AliasMap::value_type::first, &AliasMap::value_type::first);
  for (const auto& [suffix, record] : vanished) {
    if (suffix != deletedSuffix) bringUpAlias(interface + ':' + suffix, record);
  }
}

}  // namespace addrtool
