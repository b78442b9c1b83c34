// Datagrams with wrong lengths. Each is in heap memory of exactly its size, so the address
// sanitizer finds every read beyond its end.
#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <linux/if_addr.h>
#include <linux/netlink.h>
#include <linux/rtnetlink.h>

#include <random>
#include <string>
#include <vector>

#include "inventory/address_messages.h"
#include "support/collect.h"
#include "support/netlink_bytes.h"

namespace addrtool::testing {
namespace {

const AddressMessage good{.attributes = {addressAttribute("192.0.2.1"), localAttribute("192.0.2.1"),
                                         labelAttribute("eth0")}};
const AddressMessage last{.attributes = {addressAttribute("192.0.2.9")}};

const AddressDump nothing;
const AddressDump goodAlone{{"eth0", {.primaryIPv4 = {{"192.0.2.1", 24}}}}};
const AddressDump lastAlone{{"eth0", {.primaryIPv4 = {{"192.0.2.9", 24}}}}};
const AddressDump goodAndLast{{"eth0", {.primaryIPv4 = {{"192.0.2.1", 24}, {"192.0.2.9", 24}}}}};

AddressMessage withAttributes(std::vector<Attribute> attributes) {
  return {.attributes = std::move(attributes)};
}

// --- lengths of messages ---

TEST(MessageBounds, AnEmptyDatagramHoldsNothing) {
  EXPECT_EQ(collect({std::string()}), nothing);
}

TEST(MessageBounds, AMessageTooShortForItsHeadersIsSkippedAndTheNextIsRead) {
  const std::string headers = datagramOf({{}});
  ASSERT_EQ(headers.size(), 24U);
  for (std::uint32_t length = 16; length < 24; ++length) {
    const std::string cut = headerOnly(length, RTM_NEWADDR) + headers.substr(16, length - 16);
    EXPECT_EQ(collect({cut}), nothing) << length << " bytes";

    const std::string padding((4 - length % 4) % 4, '\0');
    EXPECT_EQ(collect({cut + padding + datagramOf({last})}), lastAlone) << length << " bytes";
  }
}

TEST(MessageBounds, AnImpossibleLengthEndsTheDatagram) {
  const std::string tail = datagramOf({last});
  const auto tooLong = static_cast<std::uint32_t>(16 + tail.size() + 1);
  for (const std::uint32_t length : {0U, 1U, 15U, tooLong, 8192U, 0x7FFFFFFFU, 0x80000000U,
                                     0xFFFFFFFCU, 0xFFFFFFFDU, 0xFFFFFFFEU, 0xFFFFFFFFU}) {
    const std::string datagram =
        datagramOf({good}) + std::string(3, '\0') + headerOnly(length, RTM_NEWADDR) + tail;
    EXPECT_EQ(collect({datagram}), goodAlone) << "length " << length;
  }
}

TEST(MessageBounds, TheNextMessageBeginsAtAMultipleOfFour) {
  for (const std::string label : {"eth0", "eth01", "eth012", "eth0123"}) {
    EXPECT_EQ(
        collect({withAttributes({addressAttribute("192.0.2.1"), labelAttribute(label)}), last}),
        goodAndLast);
  }
}

TEST(MessageBounds, PaddingMayBeMissingAtTheEndOfTheDatagram) {
  ASSERT_EQ(datagramOf({good}).size() % 4, 1U);
  for (std::size_t padding = 0; padding <= 3; ++padding) {
    EXPECT_EQ(collect({datagramOf({good}) + std::string(padding, '\0')}), goodAlone)
        << padding << " bytes of padding";
  }
}

TEST(MessageBounds, BytesTooFewForAHeaderAfterTheLastMessageAreIgnored) {
  for (std::size_t size = 1; size < 16; ++size) {
    const std::string rest = headerOnly(16, RTM_NEWADDR).substr(0, size);
    EXPECT_EQ(collect({datagramOf({last}) + rest}), lastAlone) << size << " bytes";
  }
}

TEST(MessageBounds, AMessageEndsWhereItsLengthSays) {
  // The bytes of the address are in the datagram, but after the end of the message.
  for (std::uint32_t length = 24; length < 32; ++length) {
    AddressMessage message = last;
    message.claimedLength = length;
    EXPECT_EQ(collect({message}), nothing) << "length " << length;
  }
  AddressMessage whole = last;
  whole.claimedLength = 32;
  EXPECT_EQ(collect({whole}), lastAlone);
}

// --- lengths of attributes ---

TEST(AttributeBounds, AnImpossibleLengthEndsTheAttributes) {
  // The header of the bad attribute is followed by 4 bytes of its own and 8 of the next.
  for (const int length : {0, 1, 2, 3, 17, 0x7FFF, 0x8000, 0xFFFC, 0xFFFD, 0xFFFE, 0xFFFF}) {
    const Attribute bad{IFA_LABEL, "eth0", static_cast<std::uint16_t>(length)};
    EXPECT_EQ(collect({withAttributes({bad, addressAttribute("192.0.2.1")}), last}), lastAlone)
        << "length " << length;
    EXPECT_EQ(collect({withAttributes(
                           {addressAttribute("192.0.2.1"), bad, addressAttribute("192.0.2.2")}),
                       last}),
              goodAndLast)
        << "length " << length;
  }
}

TEST(AttributeBounds, TheNextAttributeBeginsAtAMultipleOfFour) {
  for (std::size_t size = 0; size < 9; ++size) {
    const Attribute other{IFA_CACHEINFO, std::string(size, 'x')};
    EXPECT_EQ(collect({withAttributes({other, addressAttribute("192.0.2.1")})}), goodAlone)
        << size << " bytes";
  }
}

TEST(AttributeBounds, PaddingMayBeMissingAfterTheLastAttribute) {
  for (std::size_t size = 1; size < 5; ++size) {
    const Attribute other{IFA_CACHEINFO, std::string(size, 'x')};
    EXPECT_EQ(collect({withAttributes({addressAttribute("192.0.2.1"), other})}), goodAlone)
        << size << " bytes";
  }
}

TEST(AttributeBounds, BytesTooFewForAHeaderAfterTheLastAttributeAreIgnored) {
  for (std::uint32_t size = 1; size < 4; ++size) {
    AddressMessage message = last;
    message.claimedLength = 32 + size;
    EXPECT_EQ(collect({datagramOf({message}) + std::string(size, '\4')}), lastAlone)
        << size << " bytes";
  }
}

TEST(AttributeBounds, AnAttributeTooShortForAnAddressIsIgnored) {
  const std::vector<std::pair<std::uint8_t, std::string>> table{{AF_INET, "192.0.2.1"},
                                                                {AF_INET6, "2001:db8::1"}};
  for (const auto& [family, address] : table) {
    const std::string bytes = addressBytes(address);
    for (std::size_t size = 0; size < bytes.size(); ++size) {
      const std::string cut = bytes.substr(0, size);
      EXPECT_EQ(collect({{.family = family, .attributes = {{IFA_ADDRESS, cut}}}}), nothing)
          << size << " bytes of " << address;
      const AddressMessage whole{.family = family, .attributes = {{IFA_ADDRESS, bytes}}};
      const AddressMessage cutLocal{.family = family,
                                    .attributes = {{IFA_ADDRESS, bytes}, {IFA_LOCAL, cut}}};
      EXPECT_EQ(collect({cutLocal}), collect({whole})) << size << " bytes of " << address;
    }
  }
}

TEST(AttributeBounds, TheFirstBytesOfALongAttributeAreTheAddress) {
  const Attribute address{IFA_ADDRESS, addressBytes("192.0.2.7") + "more"};
  const Attribute local{IFA_LOCAL, addressBytes("192.0.2.1") + "other bytes"};
  EXPECT_EQ(collect({withAttributes({address, local})}), goodAlone);
}

// --- everything at once ---

std::vector<std::string> addressesIn(const AddressDump& dump) {
  std::vector<std::string> addresses;
  for (const auto& [name, interface] : dump) {
    for (const auto& record : interface.primaryIPv4) addresses.push_back(record.address);
    for (const auto& [suffix, record] : interface.aliases) addresses.push_back(record.address);
    for (const auto& record : interface.ipv6) addresses.push_back(record.address);
  }
  return addresses;
}

// Checks what must be true of every dump.
void expectSoundness(const AddressDump& dump) {
  for (const auto& [name, interface] : dump) {
    EXPECT_NE(interface, InterfaceAddresses{}) << name;
    for (const auto& [suffix, record] : interface.aliases) {
      EXPECT_EQ(suffix.find('\0'), std::string::npos);
    }
    for (const auto& record : interface.ipv6) EXPECT_NE(record.address, "::2");
  }
  for (const std::string& address : addressesIn(dump)) EXPECT_NO_THROW(addressBytes(address));
}

std::string anyInterface(unsigned index) {
  return "if" + std::to_string(index % 5);
}

TEST(RandomBytes, AreReadWithinBoundsAndYieldOnlyAddresses) {
  std::mt19937 random(20240229);
  std::size_t found = 0;
  for (int round = 0; round < 5000; ++round) {
    std::string bytes(random() % 200, '\0');
    for (char& byte : bytes) byte = static_cast<char>(random());
    // Without this, hardly any would be valid messages.
    for (std::size_t at = 0; at + 28 < bytes.size(); at += 36) {
      bytes.replace(at, 4, {static_cast<char>(random() % 64), 0, 0, 0});
      bytes.replace(at + 16, 4, {random() % 2 == 0 ? '\x02' : '\x0A', 64, '\x80', 0});
      bytes.replace(at + 24, 4, {static_cast<char>(random() % 32), 0, '\x01', 0});
    }
    const AddressDump dump = collect({bytes}, true, anyInterface);
    classifyDatagram(ExactBytes(bytes).span());
    expectSoundness(dump);
    found += addressesIn(dump).size();
  }
  EXPECT_GT(found, 200U);  // enough rounds got as far as an address
}

TEST(RandomBytes, InAGoodDatagramAreReadWithinBounds) {
  const std::string whole = datagramOf(
      {good,
       withAttributes({labelAttribute("eth0:web:2"),
                       addressAttribute("198.51.100.7"),
                       localAttribute("198.51.100.8"),
                       {IFA_CACHEINFO, std::string(16, '\xFF')}}),
       {.family = AF_INET6, .prefixLength = 64, .attributes = {addressAttribute("2001:db8::1")}},
       last});
  std::mt19937 random(20250801);
  std::size_t found = 0;
  for (int round = 0; round < 10000; ++round) {
    std::string bytes = whole.substr(0, random() % (whole.size() + 1));
    for (auto changes = random() % 5; changes > 0 && !bytes.empty(); --changes) {
      bytes.at(random() % bytes.size()) = static_cast<char>(random());
    }
    const AddressDump dump = collect({bytes}, false, anyInterface);
    classifyDatagram(ExactBytes(bytes).span());
    expectSoundness(dump);
    found += addressesIn(dump).size();
  }
  EXPECT_GT(found, 10000U);
}

}  // namespace
}  // namespace addrtool::testing
