// Fuzzes the datagrams of the kernel. The input is one datagram.
#include <arpa/inet.h>
#include <netinet/in.h>

#include <array>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "fuzzing.h"
#include "inventory/address_messages.h"

namespace addrtool::fuzz {
namespace {

using Records = std::vector<AddressRecord>;

// Every index that the kernel can use, a positive int, has a name.
std::string nameOfInterface(unsigned index) {
  if (index == 0 || index > 0x7fffffff) throw std::runtime_error("no such interface");
  return "eth" + std::to_string(index);
}

// The addresses in that many copies of the datagram, or nothing if an interface has no name.
std::optional<AddressDump> collect(Octets datagram, int copies, bool includeHostScope = false) {
  AddressDump dump;
  AddressCollector collector(dump, includeHostScope, nameOfInterface);
  try {
    for (; copies > 0; --copies) collector.collect(std::as_bytes(datagram));
  } catch (const std::runtime_error&) {
    return std::nullopt;
  }
  return dump;
}

void checkRecord(int family, const AddressRecord& record) {
  in6_addr bytes{};
  std::array<char, INET6_ADDRSTRLEN> text{};
  require(inet_pton(family, record.address.c_str(), &bytes) == 1, "an address is an address");
  inet_ntop(family, &bytes, text.data(), text.size());
  require(record.address == text.data(), "an address has its usual form");
  require(record.prefixLength <= 255, "a length is a byte");
}

bool isTwice(const Records& doubled, Records records) {
  const Records copy = records;
  records.insert(records.end(), copy.begin(), copy.end());
  return doubled == records;
}

void checkInterface(const InterfaceAddresses& found, const InterfaceAddresses& doubled,
                    const InterfaceAddresses& wider) {
  const auto& [aliases, primaryIPv4, ipv6] = found;
  require(!aliases.empty() || !primaryIPv4.empty() || !ipv6.empty(), "no entry is empty");
  for (const auto& [suffix, record] : aliases) checkRecord(AF_INET, record);
  for (const AddressRecord& record : primaryIPv4) checkRecord(AF_INET, record);
  for (const AddressRecord& record : ipv6) {
    checkRecord(AF_INET6, record);
    require(record.address != "::2", "::2 is not managed");
  }
  require(doubled.aliases == aliases, "the same datagram adds no alias");
  require(isTwice(doubled.primaryIPv4, primaryIPv4) && isTwice(doubled.ipv6, ipv6),
          "the addresses of the next datagram come next");
  require(aliases.size() <= wider.aliases.size() &&
              primaryIPv4.size() <= wider.primaryIPv4.size() && ipv6.size() <= wider.ipv6.size(),
          "host scope leaves out nothing");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const Octets input(data, size);
  const auto dump = collect(input, 1);

  // At an odd address, since the code must not rely on alignment.
  std::vector<std::uint8_t> copy(1);
  copy.insert(copy.end(), input.begin(), input.end());
  require(collect(Octets(copy).subspan(1), 1) == dump, "alignment does not matter");

  const auto doubled = collect(input, 2);
  require(doubled.has_value() == dump.has_value(), "the same datagram fails again");
  if (const auto wider = collect(input, 1, true)) {
    require(dump && doubled->size() == dump->size(), "the same datagram adds no interface");
    for (const auto& [name, found] : *dump) {
      require(wider->contains(name), "host scope leaves out nothing");
      checkInterface(found, doubled->at(name), wider->at(name));
    }
  }
  require(size >= 16 || classifyDatagram(std::as_bytes(input)) == DatagramKind::Malformed,
          "a datagram holds a message");
  return 0;
}

}  // namespace addrtool::fuzz
