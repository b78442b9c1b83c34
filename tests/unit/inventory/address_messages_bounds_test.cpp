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
  // All bytes are in the datagram. Those after the end of the message are another message.
  AddressMessage message = withAttributes(
      {addressAttribute("192.0.2.1"), localAttribute("192.0.2.9"), labelAttribute("eth0:1")});
  for (std::uint32_t length = 24; length <= 51; ++length) {
    message.claimedLength = length;
    const AddressDump alias{{"eth0", {.aliases = {{"1", {"192.0.2.9", 24}}}}}};
    EXPECT_EQ(collect({message}), length < 32   ? nothing
                                  : length < 40 ? goodAlone
                                  : length < 51 ? lastAlone
                                                : alias)
        << "length " << length;
  }
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

TEST(AttributeBounds, TheNextAttributeBeginsAtAMultipleOfFourAndTheLastNeedsNoPadding) {
  for (std::size_t size = 0; size < 9; ++size) {
    const Attribute other{IFA_CACHEINFO, std::string(size, 'x')};
    EXPECT_EQ(collect({withAttributes({other, addressAttribute("192.0.2.1")})}), goodAlone)
        << size << " bytes";
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

std::string anyInterface(unsigned index) {
  return "if" + std::to_string(index % 5);
}

TEST(RandomBytes, AreReadWithinBoundsAndYieldOnlyAddresses) {
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
  for (int round = 0; round < 15000; ++round) {
    std::string bytes = whole.substr(0, random() % (whole.size() + 1));
    for (auto changes = random() % 5; changes > 0 && !bytes.empty(); --changes) {
      bytes.at(random() % bytes.size()) = static_cast<char>(random());
    }
    const AddressDump dump = collect({bytes}, round % 2 == 0, anyInterface);
    classifyDatagram(ExactBytes(bytes).span());
    for (const auto& [name, interface] : dump) EXPECT_NE(interface, InterfaceAddresses{}) << name;
    const std::vector<std::string> addresses = addressesIn(dump);
    for (const std::string& address : addresses) EXPECT_NO_THROW(addressBytes(address));
    found += addresses.size();
  }
  EXPECT_GT(found, 15000U);
}

}  // namespace
}  // namespace addrtool::testing
