// Fuzzes the datagrams of the kernel. The input is one datagram. It is collected twice, as two
// datagrams of one dump, with and without host scope.
#include <arpa/inet.h>
#include <netinet/in.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <functional>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <vector>

#include "inventory/address_messages.h"
#include "require.h"

namespace addrtool::fuzz {
namespace {

using Octets = std::span<const std::uint8_t>;

// Every index that the kernel can use, a positive int, has a name.
std::string nameOfInterface(unsigned index) {
  if (index == 0 || index > 0x7fffffff) throw std::runtime_error("no such interface");
  return "eth" + std::to_string(index);
}

std::uint16_t number16(Octets bytes, std::size_t offset) {
  std::uint16_t value = 0;
  std::memcpy(&value, &bytes[offset], sizeof(value));
  return value;
}

std::uint32_t number32(Octets bytes, std::size_t offset) {
  std::uint32_t value = 0;
  std::memcpy(&value, &bytes[offset], sizeof(value));
  return value;
}

std::size_t paddedTo4(std::size_t length) {
  return (length + 3) / 4 * 4;
}

// The attributes of one message, as offsets into the message.
struct ModelAttributes {
  std::optional<std::size_t> address;
  std::optional<std::size_t> local;
  std::string label;
};

ModelAttributes modelAttributes(Octets message, std::size_t addressSize) {
  ModelAttributes found;
  std::size_t length = 0;
  for (std::size_t at = 24; at + 4 <= message.size(); at += paddedTo4(length)) {
    length = number16(message, at);
    const unsigned type = number16(message, at + 2);
    if (length < 4 || at + length > message.size()) break;
    const bool holdsAddress = length - 4 >= addressSize;
    if (type == 1 && holdsAddress) found.address = at + 4;
    if (type == 2 && holdsAddress) found.local = at + 4;
    if (type == 3) {
      found.label.clear();
      for (std::size_t i = 4; i < length && message[at + i] != 0; ++i) {
        found.label += static_cast<char>(message[at + i]);
      }
    }
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
  const std::string interface = nameOfInterface(number32(message, 20));

  const auto attributes = modelAttributes(message, family == 2 ? 4 : 16);
  if (!attributes.address) return;
  std::array<char, INET6_ADDRSTRLEN> text{};
  inet_ntop(static_cast<int>(family), &message[attributes.local.value_or(*attributes.address)],
            text.data(), text.size());
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

void modelDatagram(Octets datagram, bool includeHostScope, AddressDump& dump) {
  std::size_t length = 0;
  for (std::size_t at = 0; at + 16 <= datagram.size(); at += paddedTo4(length)) {
    length = number32(datagram, at);
    if (length < 16 || at + length > datagram.size()) break;
    modelMessage(datagram.subspan(at, length), includeHostScope, dump);
  }
}

DatagramKind modelKind(Octets datagram) {
  if (datagram.size() < 16) return DatagramKind::Malformed;
  const std::uint32_t length = number32(datagram, 0);
  const unsigned type = number16(datagram, 4);
  if (length < 16 || length > datagram.size() || type == 2) return DatagramKind::Malformed;
  return type == 3 ? DatagramKind::EndOfDump : DatagramKind::Addresses;
}

// The dump, and whether collecting threw an exception.
struct Outcome {
  AddressDump dump;
  bool isRaised = false;

  bool operator==(const Outcome&) const = default;
};

Outcome outcomeOf(const std::function<void(AddressDump&)>& collect) {
  Outcome outcome;
  try {
    collect(outcome.dump);
  } catch (const std::runtime_error&) {
    outcome.isRaised = true;
  }
  return outcome;
}

}  // namespace
}  // namespace addrtool::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace addrtool;
  using namespace addrtool::fuzz;
  const Octets octets(data, size);
  require(classifyDatagram(std::as_bytes(octets)) == modelKind(octets),
          "a datagram is judged by its first message");

  // One copy is at an odd address: the code must not rely on alignment.
  std::vector<std::uint8_t> shifted(1);
  shifted.insert(shifted.end(), data, data + size);
  const auto odd = std::as_bytes(std::span(shifted).subspan(1));
  for (const bool includeHostScope : {false, true}) {
    const auto datagram = includeHostScope ? std::as_bytes(octets) : odd;
    const Outcome outcome = outcomeOf([&](AddressDump& dump) {
      AddressCollector collector(dump, includeHostScope, nameOfInterface);
      collector.collect(datagram);
      collector.collect(datagram);
    });
    const Outcome expected = outcomeOf([&](AddressDump& dump) {
      modelDatagram(octets, includeHostScope, dump);
      modelDatagram(octets, includeHostScope, dump);
    });
    require(outcome == expected, "a dump holds exactly the managed addresses");
  }
  return 0;
}
