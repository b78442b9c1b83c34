// Passes datagrams to an AddressCollector, each in heap memory of exactly its size, so the address
// sanitizer finds every read beyond its end. Prints addresses in the messages of failed tests.
#pragma once

#include <sys/socket.h>

#include <array>
#include <ostream>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "inventory/address_messages.h"
#include "support/netlink_bytes.h"

namespace addrtool {

inline void PrintTo(const AddressRecord& record, std::ostream* stream) {
  *stream << record.address << '/' << record.prefixLength;
}

inline void PrintTo(const InterfaceAddresses& addresses, std::ostream* stream) {
  for (const auto& record : addresses.primaryIPv4) PrintTo(record, &(*stream << " plain "));
  for (const auto& [suffix, record] : addresses.aliases) {
    PrintTo(record, &(*stream << " :" << suffix << ' '));
  }
  for (const auto& record : addresses.ipv6) PrintTo(record, &(*stream << ' '));
}

namespace testing {

/// The interfaces of a machine: 1 is eth0, 2 is eth1, 3 is lo. Throws for any other index.
inline std::string nameOfInterface(unsigned index) {
  static constexpr std::array<const char*, 3> names{"eth0", "eth1", "lo"};
  if (index == 0 || index > names.size()) {
    throw std::runtime_error("no interface " + std::to_string(index));
  }
  return names.at(index - 1);
}

/// An IPv4 message as the kernel sends it, and an IPv6 message.
inline AddressMessage ipv4(const std::string& address = "192.0.2.1",
                           const std::string& label = "eth0") {
  return {
      .attributes = {addressAttribute(address), localAttribute(address), labelAttribute(label)}};
}
inline AddressMessage ipv6(const std::string& address = "2001:db8::1") {
  return {.family = AF_INET6, .prefixLength = 64, .attributes = {addressAttribute(address)}};
}

/// The dump of a machine on which only eth0 has addresses.
inline AddressDump eth0With(const InterfaceAddresses& addresses) {
  return {{"eth0", addresses}};
}

inline const AddressDump nothing;
inline const AddressDump plainIPv4 = eth0With({.primaryIPv4 = {{"192.0.2.1", 24}}});

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

}  // namespace testing
}  // namespace addrtool
