// From the bytes of one rtnetlink datagram to the addresses in it. Knows no socket; whatever the
// bytes claim about their lengths, nothing outside the given span is read.
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

/// What the first message of a datagram says about the datagram as a whole.
enum class DatagramKind {
  Malformed,  ///< too short, a first length that cannot be, or an error in place of a reply
  Addresses,  ///< more datagrams follow
  EndOfDump,  ///< the last one
};

/// Judges a datagram by its first message alone: the kernel sends the end of a dump as a
/// datagram of its own.
DatagramKind classifyDatagram(std::span<const std::byte> datagram);

/// Gathers the addresses of the datagrams of one dump.
class AddressCollector {
 public:
  /// Gives the name of the interface with this kernel index; raises when there is none.
  using InterfaceNamer = std::function<std::string(unsigned index)>;

  /// Adds to `dump`, which must outlive the collector and lose nothing meanwhile. With
  /// `includeHostScope`, addresses of host scope (127.0.0.1, ::1) are taken too; otherwise only
  /// those of universe scope are.
  AddressCollector(AddressDump& dump, bool includeHostScope, InterfaceNamer interfaceNamer);

  /// Adds the managed addresses of every message of the datagram. Messages that cannot hold what
  /// they claim are skipped, and a length that cannot be ends the walk. Raises what the namer does.
  void collect(std::span<const std::byte> datagram);

 private:
  /// The interface of the last message, and where its addresses go.
  struct Interface {
    unsigned index;
    std::string name;
    InterfaceAddresses* addresses = nullptr;  // not before one is accepted
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
