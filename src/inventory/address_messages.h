// Parses the addresses in one rtnetlink datagram. Uses no socket. Never reads outside of the given
// span, whatever lengths the bytes claim.
//
// Formats: netlink(7), rtnetlink(7), <linux/netlink.h>, <linux/rtnetlink.h>, <linux/if_addr.h>.
#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "inventory/address_dump.h"

namespace addrtool {

/// The kind of a datagram.
enum class DatagramKind {
  Malformed,  ///< too short, an impossible first length, or an error message
  Addresses,  ///< more datagrams follow
  EndOfDump,  ///< the last datagram
};

/// Classifies a datagram by its first message. The kernel sends the message that ends a dump in a
/// separate datagram, so the other messages need no check.
DatagramKind classifyDatagram(std::span<const std::byte> datagram);

/// Collects the addresses in the datagrams of one dump.
class AddressCollector {
 public:
  /// Returns the name of the interface with this kernel index. Raises when there is none.
  using InterfaceNamer = std::function<std::string(unsigned index)>;

  /// Adds addresses to `dump`. The collector keeps pointers into it, so the dump must outlive the
  /// collector, and nobody else may remove entries from it. Accepts addresses of universe scope,
  /// and with `includeHostScope` also those of host scope (127.0.0.1, ::1).
  AddressCollector(AddressDump& dump, bool includeHostScope, InterfaceNamer interfaceNamer);

  /// Adds the managed addresses of every message in the datagram. Skips a message that is too short
  /// for its address. Stops at a message whose length is impossible. Raises what the namer raises.
  void collect(std::span<const std::byte> datagram);

 private:
  /// The interface of the last message and its entry in the dump.
  struct Interface {
    unsigned index;
    std::string name;
    InterfaceAddresses* addresses = nullptr;  // null until an address is accepted
    std::optional<AliasMap::iterator> lastAlias = std::nullopt;
  };

  void collectMessage(std::span<const std::byte> message);
  void selectInterface(unsigned index);
  InterfaceAddresses& currentAddresses();
  void addIPv4(std::string_view label, AddressRecord record);

  AddressDump& dump_;
  bool includeHostScope_;
  InterfaceNamer interfaceNamer_;
  std::optional<Interface> current_;
};

}  // namespace addrtool
