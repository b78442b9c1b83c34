#include "changes/delete_address.h"

#include <algorithm>
#include <iterator>
#include <stdexcept>
#include <vector>

#include "changes/add_address.h"
#include "changes/run_ifconfig.h"
#include "inventory/kernel_addresses.h"
#include "persist/alias_file.h"
#include "persist/ipv6_list.h"

namespace addrtool {
namespace {

// What the removals from the files are handed; they look at the address text alone.
AddressRecord removalRecord(const std::string& address) {
  return {address, 32};
}

void deleteAlias(const std::string& interface, const AliasMap& aliases, const std::string& suffix) {
  const std::string label = interface + ':' + suffix;
  runIfconfig("'" + label + "' down");
  removeAliasFile(label);
  restoreAliases(interface, aliases, suffix);
}

void deleteFromInterface(const std::string& interface, const AddressRecord& record,
                         const std::string& addressAsTyped) {
  runIfconfig(interface + " del " + formatIPv6Entry(record));
  removeIPv6FromInterfaceFile({interface, removalRecord(addressAsTyped)});
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
      if (record.address == address) return deleteAlias(interface, addresses.aliases, suffix);
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
    return deleteFromInterface(interface, *found, address);
  }
  throw std::runtime_error(address + ": not configured");
}

void restoreAliases(const std::string& interface, const AliasMap& snapshot,
                    const std::string& deletedSuffix) {
  if (snapshot.size() < 2) return;
  AddressDump dump;
  readKernelAddresses(dump, false);
  const AliasMap& present = dump[interface].aliases;  // empty when all its addresses are gone

  std::vector<AliasMap::value_type> vanished;  // in one pass over both, which have one order
  std::ranges::set_difference(snapshot, present, std::back_inserter(vanished), {},
                              &AliasMap::value_type::first, &AliasMap::value_type::first);
  for (const auto& [suffix, record] : vanished) {
    if (suffix != deletedSuffix) bringUpAlias(interface + ':' + suffix, record);
  }
}

}  // namespace addrtool
