#include "changes/add_address.h"

#include <bitset>
#include <charconv>
#include <cstdint>
#include <limits>
#include <stdexcept>
#include <string>
#include <system_error>

#include "changes/ifconfig.h"
#include "inventory/address_dump.h"
#include "inventory/address_record.h"
#include "inventory/kernel_addresses.h"
#include "persist/alias_file.h"
#include "persist/ipv6_list.h"
#include "runtime/parse_unsigned16.h"

namespace addrtool {

void addAddress(const std::string& interface, const std::string& address,
                const std::string& netmaskOrPrefix) {
  if (address.find(':') == std::string::npos) {
    addIPv4Address(interface,
                   {.address = address, .prefixLength = netmaskToPrefix(netmaskOrPrefix)});
    return;
  }
  AddressRecord record{.address = address};
  if (parseUnsigned16(netmaskOrPrefix.c_str(), &record.prefixLength) != 0) {
    throw std::runtime_error(netmaskOrPrefix + ": cannot convert to int");
  }
  addIPv6Address(interface, record);
}

void addIPv4Address(const std::string& interface, const AddressRecord& record) {
  AddressDump dump;
  readKernelAddresses(dump, false);
  const auto found = dump.find(interface);
  if (found == dump.end()) throw std::runtime_error(interface + ": no such network interface.");

  const std::string number = lowestFreeAliasNumber(found->second.aliases);
  const std::string label = interface + ':' + number;
  // A higher number is never shorter, so when the lowest one does not fit, none does.
  if (number.empty() || !kernelCanHoldLabel(label)) {
    throw std::runtime_error(interface + ": no free alias number.");
  }
  bringUpAlias(label, record);
  writeAliasFile({.label = label, .address = record});
}

void addIPv6Address(const std::string& interface, const AddressRecord& record) {
  addIPv6ToRunningInterface(interface, record);
  addIPv6ToInterfaceFile({.label = interface, .address = record});
}

std::string lowestFreeAliasNumber(const AliasMap& aliases) {
  // One pass. Looking up each number would take as long as reading a long table from the kernel.
  std::bitset<std::numeric_limits<std::uint16_t>::max() + 1> taken;
  for (const auto& [suffix, record] : aliases) {
    std::uint16_t number = 0;
    const char* const end = suffix.data() + suffix.size();
    const auto parsed = std::from_chars(suffix.data(), end, number);
    // The suffix 01 makes another label than 1, so it takes no number.
    if (parsed.ptr == end && parsed.ec == std::errc{} && suffix.front() != '0') {
      taken.set(number);
    }
  }
  std::uint16_t lowest = 1;
  while (lowest != 0 && taken.test(lowest)) ++lowest;
  if (lowest == 0) return "";  // the counter has wrapped
  return std::to_string(lowest);
}

}  // namespace addrtool
