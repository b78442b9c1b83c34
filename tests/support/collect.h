// Passes datagrams to an AddressCollector, each in heap memory of exactly its size.
#pragma once

#include <array>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "inventory/address_messages.h"
#include "support/netlink_bytes.h"
#include "support/printers.h"

namespace addrtool::testing {

/// The interfaces of a machine: 1 is eth0, 2 is eth1, 3 is lo. Throws for any other index.
inline std::string nameOfInterface(unsigned index) {
  static constexpr std::array<const char*, 3> names{"eth0", "eth1", "lo"};
  if (index == 0 || index > names.size()) {
    throw std::runtime_error("no interface " + std::to_string(index));
  }
  return names.at(index - 1);
}

inline const AddressDump nothing;

inline AddressDump collect(const std::vector<std::string>& datagrams, bool includeHostScope = false,
                           AddressCollector::InterfaceNamer interfaceNamer = nameOfInterface) {
  AddressDump dump;
  AddressCollector collector(dump, includeHostScope, std::move(interfaceNamer));
  for (const std::string& datagram : datagrams) collector.collect(ExactBytes(datagram).span());
  return dump;
}

inline AddressDump collect(const std::vector<AddressMessage>& messages,
                           bool includeHostScope = false) {
  return collect({datagramOf(messages)}, includeHostScope);
}

}  // namespace addrtool::testing
