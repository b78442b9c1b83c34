// Fuzzes the datagrams of the kernel. The input is one datagram. It is collected twice, as two
// datagrams of one dump, with and without host scope.
#include <arpa/inet.h>
#include <netinet/in.h>

#include <array>
#include <cstring>
#include <stdexcept>

#include "fuzzing.h"
#include "inventory/address_messages.h"

namespace addrtool::fuzz {
namespace {

// Every index that the kernel can use, a positive int, has a name.
std::string nameOfInterface(unsigned index) {
  if (index == 0 || index > 0x7fffffff) throw std::runtime_error("no such interface");
  return "eth" + std::to_string(index);
}

template <typename Number>
Number numberAt(Octets bytes, std::size_t offset) {
  Number value = 0;
  std::memcpy(&value, &bytes[offset], sizeof(value));
  return value;
}

// The blocks of the bytes. Each starts with its length, a Length, and is padded to a multiple of 4.
// An impossible length ends them.
template <typename Length>
std::vector<Octets> blocksOf(Octets bytes, std::size_t headerSize) {
  std::vector<Octets> blocks;
  std::size_t length = 0;
  for (std::size_t at = 0; at + headerSize <= bytes.size(); at += (length + 3) / 4 * 4) {
    length = numberAt<Length>(bytes, at);
    if (length < headerSize || at + length > bytes.size()) break;
    blocks.push_back(bytes.subspan(at, length));
  }
  return blocks;
}

struct ModelAttributes {
  Octets address;
  Octets local;
  std::string label;
};

ModelAttributes modelAttributes(Octets message, std::size_t addressSize) {
  ModelAttributes found;
  for (const Octets attribute : blocksOf<std::uint16_t>(message.subspan(24), 4)) {
    const unsigned type = numberAt<std::uint16_t>(attribute, 2);
    const Octets payload = attribute.subspan(4);
    if (type == 1 && payload.size() >= addressSize) found.address = payload;
    if (type == 2 && payload.size() >= addressSize) found.local = payload;
    if (type == 3) found.label = upToNul({payload.begin(), payload.end()});
  }
  return found;
}

void modelMessage(Octets message, bool includeHostScope, AddressDump& dump) {
  if (message.size() < 24) return;
  const unsigned family = message[16];
  const unsigned scope = message[19];
  if (family != 2 && family != 10) return;
  if (family == 10 && (message[18] & 0x81) != 0x80) return;
  if (scope != 0 && (scope != 254 || !includeHostScope)) return;
  const std::string interface = nameOfInterface(numberAt<std::uint32_t>(message, 20));

  const auto attributes = modelAttributes(message, family == 2 ? 4 : 16);
  if (attributes.address.empty()) return;
  const Octets own = attributes.local.empty() ? attributes.address : attributes.local;
  std::array<char, INET6_ADDRSTRLEN> text{};
  inet_ntop(static_cast<int>(family), own.data(), text.data(), text.size());
  const AddressRecord record{text.data(), message[17]};

  const std::size_t colon = attributes.label.find(':');
  if (family == 10) {
    if (record.address != "::2") dump[interface].ipv6.push_back(record);
  } else if (colon == std::string::npos) {
    dump[interface].primaryIPv4.push_back(record);
  } else {
    dump[interface].aliases.insert({attributes.label.substr(colon + 1), record});
  }
}

DatagramKind modelKind(const std::vector<Octets>& messages) {
  const unsigned type = messages.empty() ? 2 : numberAt<std::uint16_t>(messages[0], 4);
  if (type == 2) return DatagramKind::Malformed;
  return type == 3 ? DatagramKind::EndOfDump : DatagramKind::Addresses;
}

}  // namespace

int checkInput(Octets input) {
  const std::vector<Octets> messages = blocksOf<std::uint32_t>(input, 16);
  require(classifyDatagram(std::as_bytes(input)) == modelKind(messages),
          "a datagram is judged by its first message");

  // One copy is at an odd address: the code must not rely on alignment.
  std::vector<std::uint8_t> shifted(1);
  shifted.insert(shifted.end(), input.begin(), input.end());
  for (const bool includeHostScope : {false, true}) {
    const auto datagram = std::as_bytes(includeHostScope ? input : Octets(shifted).subspan(1));
    AddressDump dump;
    const auto failure = failureOf([&] {
      AddressCollector collector(dump, includeHostScope, nameOfInterface);
      collector.collect(datagram);
      collector.collect(datagram);
    });
    AddressDump expected;
    const auto expectedFailure = failureOf([&] {
      for (const Octets message : messages) modelMessage(message, includeHostScope, expected);
      for (const Octets message : messages) modelMessage(message, includeHostScope, expected);
    });
    require(dump == expected && failure == expectedFailure,
            "a dump holds exactly the managed addresses");
  }
  return 0;
}

}  // namespace addrtool::fuzz
