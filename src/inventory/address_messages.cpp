#include "inventory/address_messages.h"

#include <arpa/inet.h>
#include <linux/if_addr.h>
#include <linux/netlink.h>
#include <linux/rtnetlink.h>
#include <netinet/in.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cstddef>
#include <cstring>
#include <iterator>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>

#include "inventory/address_dump.h"
#include "inventory/address_record.h"

namespace addrtool {
namespace {

using Bytes = std::span<const std::byte>;

constexpr std::size_t headersSize = sizeof(nlmsghdr) + sizeof(ifaddrmsg);

// Copies a T from the front of the bytes, which must hold one. A malformed length can leave the
// next header unaligned, so it cannot be read in place.
template <typename T>
T readFront(Bytes bytes) {
  T value{};
  std::memcpy(&value, bytes.first(sizeof(T)).data(), sizeof(T));
  return value;
}

// Drops an item of the given length and its padding from the front. If the padding reaches past the
// end, drops everything.
Bytes dropItem(Bytes bytes, std::size_t length) {
  constexpr std::size_t alignment = NLMSG_ALIGNTO;
  static_assert(alignment == RTA_ALIGNTO);
  const std::size_t padded = (length + alignment - 1) / alignment * alignment;
  return bytes.subspan(std::min(padded, bytes.size()));
}

bool holdsMessage(Bytes bytes) {
  if (bytes.size() < sizeof(nlmsghdr)) return false;
  const auto length = readFront<nlmsghdr>(bytes).nlmsg_len;
  return length >= sizeof(nlmsghdr) && length <= bytes.size();
}

bool holdsAttribute(Bytes bytes) {
  if (bytes.size() < sizeof(rtattr)) return false;
  const auto length = readFront<rtattr>(bytes).rta_len;
  return length >= sizeof(rtattr) && length <= bytes.size();
}

// The panel does not manage temporary IPv6 addresses or addresses from autoconfiguration.
bool isManaged(const ifaddrmsg& header, bool includeHostScope) {
  if (header.ifa_family != AF_INET && header.ifa_family != AF_INET6) return false;
  if (header.ifa_family == AF_INET6) {
    if ((header.ifa_flags & IFA_F_TEMPORARY) != 0) return false;
    if ((header.ifa_flags & IFA_F_PERMANENT) == 0) return false;
  }
  return header.ifa_scope == RT_SCOPE_UNIVERSE ||
         (includeHostScope && header.ifa_scope == RT_SCOPE_HOST);
}

struct AddressAttributes {
  Bytes address;  // the peer's on a point-to-point link
  Bytes local;
  std::string_view label;
};

std::string_view textUpToNul(Bytes payload) {
  const auto end = std::ranges::find(payload, std::byte{0});
  const auto size = static_cast<std::size_t>(end - payload.begin());
  return {reinterpret_cast<const char*>(payload.data()), size};
}

// A later attribute replaces an earlier one of the same type. An attribute that is too short for
// its address is ignored.
AddressAttributes readAttributes(Bytes bytes, std::size_t addressSize) {
  AddressAttributes found;
  while (holdsAttribute(bytes)) {
    const auto header = readFront<rtattr>(bytes);
    const Bytes payload = bytes.first(header.rta_len).subspan(sizeof(rtattr));
    const bool holdsAddress = payload.size() >= addressSize;
    if (header.rta_type == IFA_ADDRESS && holdsAddress) found.address = payload.first(addressSize);
    if (header.rta_type == IFA_LOCAL && holdsAddress) found.local = payload.first(addressSize);
    if (header.rta_type == IFA_LABEL) found.label = textUpToNul(payload);
    bytes = dropItem(bytes, header.rta_len);
  }
  return found;
}

// Returns the same text as inet_ntop(3). That function calls sprintf(3), which would take a third
// of the time of a long listing.
std::string ipv4Text(Bytes address) {
  std::array<char, INET_ADDRSTRLEN> text{};
  char* end = text.data();
  for (const std::byte part : address) {
    if (end != text.data()) *end++ = '.';
    end = std::to_chars(end, text.data() + text.size(), std::to_integer<unsigned>(part)).ptr;
  }
  return {text.data(), end};
}

std::string ipv6Text(Bytes address) {
  std::array<char, INET6_ADDRSTRLEN> text{};
  inet_ntop(AF_INET6, address.data(), text.data(), text.size());
  return text.data();
}

}  // namespace

DatagramKind classifyDatagram(Bytes datagram) {
  if (!holdsMessage(datagram)) return DatagramKind::Malformed;
  switch (readFront<nlmsghdr>(datagram).nlmsg_type) {
    case NLMSG_ERROR:
      return DatagramKind::Malformed;
    case NLMSG_DONE:
      return DatagramKind::EndOfDump;
    default:
      return DatagramKind::Addresses;
  }
}

AddressCollector::AddressCollector(AddressDump& dump, bool includeHostScope,
                                   InterfaceNamer interfaceNamer)
    : dump_(dump),
      includeHostScope_(includeHostScope),
      interfaceNamer_(std::move(interfaceNamer)) {}

void AddressCollector::collect(Bytes datagram) {
  while (holdsMessage(datagram)) {
    const std::size_t length = readFront<nlmsghdr>(datagram).nlmsg_len;
    collectMessage(datagram.first(length));
    datagram = dropItem(datagram, length);
  }
}

// The type is ignored; the family check rejects other messages.
void AddressCollector::collectMessage(Bytes message) {
  if (message.size() < headersSize) return;
  const auto header = readFront<ifaddrmsg>(message.subspan(sizeof(nlmsghdr)));
  if (!isManaged(header, includeHostScope_)) return;

  selectInterface(header.ifa_index);
  const bool isIPv4 = header.ifa_family == AF_INET;
  const auto attributes =
      readAttributes(message.subspan(headersSize), isIPv4 ? sizeof(in_addr) : sizeof(in6_addr));
  if (attributes.address.empty()) return;

  // On a point-to-point link, IFA_ADDRESS is the peer's address and IFA_LOCAL is our own.
  const Bytes own = attributes.local.empty() ? attributes.address : attributes.local;
  AddressRecord record{.address = isIPv4 ? ipv4Text(own) : ipv6Text(own),
                       .prefixLength = header.ifa_prefixlen};
  if (isIPv4) {
    addIPv4(attributes.label, std::move(record));
  } else if (record.address != "::2") {  // never managed, on purpose
    currentAddresses().ipv6.push_back(std::move(record));
  }
}

// The messages of one interface usually follow one another. Looking up a name costs three system
// calls, so the last name is kept.
void AddressCollector::selectInterface(unsigned index) {
  if (current_ && current_->index == index) return;
  current_ = {.index = index, .name = interfaceNamer_(index)};
}

InterfaceAddresses& AddressCollector::currentAddresses() {
  if (current_->addresses == nullptr) current_->addresses = &dump_[current_->name];
  return *current_->addresses;
}

// Aliases usually arrive in order, so hint at the position after the last one.
void AddressCollector::addIPv4(std::string_view label, AddressRecord record) {
  const std::size_t colon = label.find(':');
  if (colon == std::string_view::npos) {
    currentAddresses().primaryIPv4.push_back(std::move(record));
    return;
  }
  AliasMap& aliases = currentAddresses().aliases;
  std::optional<AliasMap::iterator>& last = current_->lastAlias;
  last = aliases.try_emplace(last ? std::next(*last) : aliases.end(),
                             std::string(label.substr(colon + 1)), std::move(record));
}

}  // namespace addrtool
