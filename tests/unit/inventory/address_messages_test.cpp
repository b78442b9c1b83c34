#include "inventory/address_messages.h"

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <linux/if_addr.h>
#include <linux/netlink.h>
#include <linux/rtnetlink.h>
#include <netinet/in.h>

#include <algorithm>
#include <array>
#include <string>
#include <utility>
#include <vector>

#include "support/child_process.h"
#include "support/collect.h"
#include "support/netlink_bytes.h"

namespace addrtool::testing {
namespace {

AddressMessage ipv4(const std::string& address, const std::string& label = "eth0") {
  return {
      .attributes = {addressAttribute(address), localAttribute(address), labelAttribute(label)}};
}

AddressMessage ipv6(const std::string& address) {
  return {.family = AF_INET6, .prefixLength = 64, .attributes = {addressAttribute(address)}};
}

AddressMessage onInterface(std::uint32_t index, AddressMessage message) {
  message.index = index;
  return message;
}

// The dump of a machine on which only eth0 has addresses.
AddressDump eth0With(const InterfaceAddresses& addresses) {
  return {{"eth0", addresses}};
}

// The same for one IPv4 address, 192.0.2.1/24, plain or as an alias, and for 2001:db8::1/64.
const AddressDump plain = eth0With({.primaryIPv4 = {{"192.0.2.1", 24}}});
const AddressDump onlyIPv6 = eth0With({.ipv6 = {{"2001:db8::1", 64}}});

AddressDump alias(const std::string& suffix) {
  return eth0With({.aliases = {{suffix, {"192.0.2.1", 24}}}});
}

// --- how addresses are written ---

TEST(AddressMessages, AnIPv4AddressIsWrittenAsInetNtopWritesIt) {
  for (unsigned value = 0; value < 256; ++value) {
    for (const unsigned shift : {0U, 8U, 16U, 24U}) {
      const in_addr address{htonl(0x01020304U ^ (value << shift))};
      std::array<char, INET_ADDRSTRLEN> expected{};
      ASSERT_NE(inet_ntop(AF_INET, &address, expected.data(), expected.size()), nullptr);
      EXPECT_EQ(collect({ipv4(expected.data())}),
                eth0With({.primaryIPv4 = {{expected.data(), 24}}}));
    }
  }
}

// --- which messages count ---

TEST(AddressMessages, OnlyTheFamiliesOfInternetAddressesCount) {
  for (int family = 0; family < 256; ++family) {
    AddressMessage message = ipv4("192.0.2.1");
    // Long enough for either family.
    message.attributes.push_back(addressAttribute("2001:db8::1"));
    message.attributes.push_back(localAttribute("2001:db8::1"));
    message.family = static_cast<std::uint8_t>(family);
    EXPECT_EQ(collect({message}).empty(), family != AF_INET && family != AF_INET6)
        << "family " << family;
  }
}

TEST(AddressMessages, TheTypeOfAMessageIsIgnored) {
  for (const int type : {0, 1, 2, 3, 4, 16, 20, 21, 22, 24, 0xFFFF}) {
    AddressMessage message = ipv4("192.0.2.1");
    message.type = static_cast<std::uint16_t>(type);
    EXPECT_EQ(collect({message}), plain) << "type " << type;
  }
}

TEST(AddressMessages, OnlyPermanentIPv6AddressesCountAndIPv4FlagsAreIgnored) {
  for (unsigned flags = 0; flags < 256; ++flags) {
    AddressMessage message4 = ipv4("192.0.2.1");
    AddressMessage message6 = ipv6("2001:db8::1");
    message4.flags = message6.flags = static_cast<std::uint8_t>(flags);
    const bool isManaged = (flags & 0x80U) != 0 && (flags & 0x01U) == 0;
    EXPECT_EQ(collect({message4}), plain) << "flags " << flags;
    EXPECT_EQ(collect({message6}), isManaged ? onlyIPv6 : nothing) << "flags " << flags;
  }
}

TEST(AddressMessages, TheFlagsAttributeIsIgnored) {
  AddressMessage kept = ipv6("2001:db8::1");
  kept.attributes.push_back({IFA_FLAGS, {'\x01', 0, 0, 0}});  // temporary
  AddressMessage dropped = ipv6("2001:db8::2");
  dropped.flags = 0;
  dropped.attributes.push_back({IFA_FLAGS, {'\x80', 0, 0, 0}});  // permanent
  EXPECT_EQ(collect({kept, dropped}), onlyIPv6);
}

TEST(AddressMessages, OnlyUniverseScopeAndOnRequestHostScopeCount) {
  for (int scope = 0; scope < 256; ++scope) {
    for (AddressMessage message : {ipv4("192.0.2.1"), ipv6("2001:db8::1")}) {
      message.scope = static_cast<std::uint8_t>(scope);
      EXPECT_EQ(collect({message}, false).size(), scope == 0 ? 1U : 0U) << "scope " << scope;
      EXPECT_EQ(collect({message}, true).size(), scope == 0 || scope == 254 ? 1U : 0U)
          << "scope " << scope;
    }
  }
}

TEST(AddressMessages, LoopbackIsRecognisedByItsScopeNotItsAddress) {
  AddressMessage loopback = onInterface(3, ipv4("127.0.0.1", "lo"));
  EXPECT_EQ(collect({loopback}), (AddressDump{{"lo", {.primaryIPv4 = {{"127.0.0.1", 24}}}}}));

  loopback.scope = RT_SCOPE_HOST;
  EXPECT_EQ(collect({loopback}), nothing);
}

TEST(AddressMessages, ASkippedMessageDoesNotEndTheDatagram) {
  AddressMessage linkLocal = ipv6("fe80::1");
  linkLocal.scope = RT_SCOPE_LINK;
  EXPECT_EQ(collect({linkLocal, {.family = AF_UNIX}, {}, ipv4("192.0.2.1")}), plain);
}

// --- the name of the interface ---

TEST(AddressMessages, TheIndexNamesTheInterfaceNotTheLabel) {
  EXPECT_EQ(collect({onInterface(2, ipv4("192.0.2.1", "eth0:1"))}),
            (AddressDump{{"eth1", {.aliases = {{"1", {"192.0.2.1", 24}}}}}}));
}

TEST(AddressMessages, InterfacesComeInTheOrderOfTheirNames) {
  const auto dump =
      collect({onInterface(3, ipv4("192.0.2.3")), onInterface(2, ipv4("192.0.2.2")),
               onInterface(1, ipv4("192.0.2.1")), onInterface(2, ipv6("2001:db8::2"))});
  EXPECT_EQ(dump, (AddressDump{
                      {"eth0", {.primaryIPv4 = {{"192.0.2.1", 24}}}},
                      {"eth1", {.primaryIPv4 = {{"192.0.2.2", 24}}, .ipv6 = {{"2001:db8::2", 64}}}},
                      {"lo", {.primaryIPv4 = {{"192.0.2.3", 24}}}},
                  }));
}

TEST(AddressMessages, InterfacesAndAliasesComeInTheOrderOfUnsignedBytes) {
  const std::string datagram =
      datagramOf({onInterface(1, ipv4("192.0.2.1", "e:\xff")),
                  onInterface(1, ipv4("192.0.2.2", "e:a")), onInterface(2, ipv4("192.0.2.3"))});
  const auto dump = collect({datagram}, false, [](unsigned i) { return i == 1 ? "\xff" : "a"; });
  EXPECT_EQ(dump.begin()->first, "a");
  EXPECT_EQ(dump.at("\xff").aliases.begin()->first, "a");
}

// Collects the datagrams and returns the indexes whose names were looked up.
std::vector<unsigned> askedFor(const std::vector<std::string>& datagrams) {
  std::vector<unsigned> asked;
  collect(datagrams, false, [&asked](unsigned index) {
    asked.push_back(index);
    return "if" + std::to_string(index);
  });
  return asked;
}

TEST(AddressMessages, TheNameIsLookedUpOncePerRunOfEqualIndexes) {
  const std::vector<std::string> datagrams{
      datagramOf({onInterface(7, ipv4("192.0.2.1")), onInterface(7, ipv6("2001:db8::1")),
                  onInterface(8, ipv4("192.0.2.2")), onInterface(7, ipv4("192.0.2.3"))}),
      datagramOf({onInterface(7, ipv4("192.0.2.4")), onInterface(9, ipv4("192.0.2.5"))})};
  EXPECT_EQ(askedFor(datagrams), (std::vector<unsigned>{7, 8, 7, 9}));
  EXPECT_EQ(askedFor({datagramOf({onInterface(0, ipv4("192.0.2.1"))})}), std::vector<unsigned>{0});
}

TEST(AddressMessages, TheNameOfAnUnmanagedAddressIsNotLookedUp) {
  AddressMessage otherFamily = ipv4("192.0.2.1");
  otherFamily.family = AF_UNIX;
  AddressMessage otherScope = ipv4("192.0.2.1");
  otherScope.scope = RT_SCOPE_LINK;
  AddressMessage autoconfigured = ipv6("2001:db8::1");
  autoconfigured.flags = 0;
  EXPECT_EQ(askedFor({datagramOf({otherFamily, otherScope, autoconfigured})}),
            std::vector<unsigned>{});
}

TEST(AddressMessages, AFailedNameLookupIsPassedOn) {
  AddressMessage withoutAddress = ipv4("192.0.2.1");
  withoutAddress.attributes.clear();
  AddressMessage badAttribute = ipv4("192.0.2.1");
  badAttribute.attributes.front().claimedLength = 0;
  // Even if its attributes are malformed or its address would be skipped.
  for (const AddressMessage& message :
       {ipv4("192.0.2.1"), ipv6("2001:db8::1"), ipv6("::2"), withoutAddress, badAttribute}) {
    EXPECT_EQ(failureOf([&] { collect({onInterface(99, message)}); }), "no interface 99");
  }
}

// --- the address ---

TEST(AddressMessages, TheLocalAddressOfAPointToPointLinkCounts) {
  const AddressMessage peer4{
      .prefixLength = 32,
      .attributes = {addressAttribute("192.0.2.2"), localAttribute("192.0.2.1")}};
  const AddressMessage peer6{
      .family = AF_INET6,
      .prefixLength = 128,
      .attributes = {localAttribute("2001:db8::1"), addressAttribute("2001:db8::2")}};
  EXPECT_EQ(collect({peer4, peer6}),
            eth0With({.primaryIPv4 = {{"192.0.2.1", 32}}, .ipv6 = {{"2001:db8::1", 128}}}));
}

TEST(AddressMessages, OnlyAMessageWithAnAddressAttributeCounts) {
  EXPECT_EQ(collect({{.attributes = {localAttribute("192.0.2.1"), labelAttribute("eth0")}},
                     {.family = AF_INET6, .attributes = {localAttribute("2001:db8::1")}},
                     {}}),
            nothing);
  EXPECT_EQ(collect({{.attributes = {addressAttribute("192.0.2.1")}}}), plain);
}

TEST(AddressMessages, ALaterAttributeReplacesAnEarlierOneOfItsType) {
  EXPECT_EQ(collect({{.attributes = {addressAttribute("192.0.2.1"), labelAttribute("eth0:1"),
                                     addressAttribute("192.0.2.2"), labelAttribute("eth0:2")}}}),
            eth0With({.aliases = {{"2", {"192.0.2.2", 24}}}}));
  EXPECT_EQ(collect({{.attributes = {addressAttribute("192.0.2.1"), localAttribute("192.0.2.2"),
                                     localAttribute("192.0.2.3"), labelAttribute("eth0:1"),
                                     labelAttribute("")}}}),
            eth0With({.primaryIPv4 = {{"192.0.2.3", 24}}}));
  // Even an attribute without a payload.
  EXPECT_EQ(collect({{.attributes = {addressAttribute("192.0.2.1"), labelAttribute("eth0:1"),
                                     Attribute{IFA_LABEL, ""}}}}),
            plain);
}

TEST(AddressMessages, AttributesOfOtherTypesAreIgnored) {
  for (const int type : {0, 4, 5, 6, 7, 8, 9, 10, 11, 255, 0x0101, 0x0102, 0x0103, 0x4001, 0x8001,
                         0x8002, 0x8003, 0xFFFF}) {
    const Attribute other{static_cast<std::uint16_t>(type), "eth0:1 and more bytes"};
    EXPECT_EQ(collect({{.attributes = {other, addressAttribute("192.0.2.1"), other}}}), plain)
        << "type " << type;
  }
}

TEST(AddressMessages, AnIPv6AddressIsWrittenAsInetNtopWritesIt) {
  const std::vector<std::pair<std::string, std::string>> table{
      {"2001:0DB8:0:0:0:0:0:0010", "2001:db8::10"},
      {"2001:db8:0:1:0:0:0:1", "2001:db8:0:1::1"},
      {"0:0:0:0:0:ffff:192.0.2.1", "::ffff:192.0.2.1"},
      {"::", "::"},
      {"FFFF:FFFF:FFFF:FFFF:FFFF:FFFF:FFFF:FFFF", "ffff:ffff:ffff:ffff:ffff:ffff:ffff:ffff"}};
  for (const auto& [given, text] : table) {
    EXPECT_EQ(collect({ipv6(given)}), eth0With({.ipv6 = {{text, 64}}}));
  }
}

TEST(AddressMessages, ThePrefixLengthIsNotChecked) {
  for (const int length : {0, 1, 32, 64, 128, 255}) {
    AddressMessage message4 = ipv4("192.0.2.1");
    AddressMessage message6 = ipv6("2001:db8::1");
    message4.prefixLength = message6.prefixLength = static_cast<std::uint8_t>(length);
    const auto expected = static_cast<std::uint16_t>(length);
    EXPECT_EQ(collect({message4, message6}), eth0With({.primaryIPv4 = {{"192.0.2.1", expected}},
                                                       .ipv6 = {{"2001:db8::1", expected}}}));
  }
}

// --- IPv4: plain or alias ---

TEST(AddressMessages, ALabelWithoutAColonIsPlain) {
  for (const std::string label : {"eth0", "", "lo", "eth0.5", "1"}) {
    EXPECT_EQ(collect({ipv4("192.0.2.1", label)}), plain) << "label " << label;
  }
  EXPECT_EQ(collect({{.attributes = {addressAttribute("192.0.2.1")}}}), plain) << "no label";
}

TEST(AddressMessages, TheSuffixIsTheTextAfterTheFirstColonOfTheLabel) {
  const std::vector<std::pair<std::string, std::string>> table{
      {"eth0:1", "1"}, {"eth0:web:2", "web:2"}, {"eth0:", ""},
      {":1", "1"},     {"eth1:5", "5"},         {"eth0::", ":"}};
  for (const auto& [label, suffix] : table) {
    EXPECT_EQ(collect({ipv4("192.0.2.1", label)}), alias(suffix)) << "label " << label;
  }
}

TEST(AddressMessages, ALabelEndsAtItsNulOrAtTheEndOfItsAttribute) {
  const std::vector<std::pair<std::string, AddressDump>> table{
      {{'e', ':', '1', '\0', '2'}, alias("1")},
      {{'e', '\0', ':', '1', '\0'}, plain},
      {"e:12", alias("12")},
      {"e:123", alias("123")},
      {"", plain}};
  for (const auto& [payload, expected] : table) {
    const Attribute label{IFA_LABEL, payload};
    EXPECT_EQ(collect({{.attributes = {addressAttribute("192.0.2.1"), label}}}), expected);
    EXPECT_EQ(collect({{.attributes = {label, addressAttribute("192.0.2.1")}}}), expected);
  }
}

TEST(AddressMessages, AliasesAreSortedPerInterfaceInWhateverOrderTheyCome) {
  std::vector<std::string> suffixes{"1", "10", "2", "3", "web"};
  AddressDump expected;
  for (std::size_t n = 0; n < suffixes.size(); ++n) {
    expected["eth0"].aliases[suffixes[n]] = {"192.0.2." + std::to_string(n), 24};
    expected["eth1"].aliases[suffixes[n]] = {"198.51.100." + std::to_string(n), 24};
  }
  int orders = 0;
  do {
    std::vector<AddressMessage> messages;
    for (const std::string& suffix : suffixes) {
      for (const std::uint32_t index : {1U, 2U}) {
        const std::string& address = expected.at(nameOfInterface(index)).aliases.at(suffix).address;
        messages.push_back(onInterface(index, ipv4(address, "eth0:" + suffix)));
      }
    }
    EXPECT_EQ(collect(messages), expected);
    ++orders;
  } while (std::ranges::next_permutation(suffixes).found);
  EXPECT_EQ(orders, 120);
}

TEST(AddressMessages, TheFirstOfTwoAddressesWithOneSuffixIsKept) {
  const std::string first = datagramOf({ipv4("192.0.2.1", "eth0:1"), ipv4("192.0.2.2", "eth0:1")});
  const std::string second = datagramOf({ipv4("192.0.2.3", "eth0:1")});
  EXPECT_EQ(collect({first, second}), alias("1"));
}

TEST(AddressMessages, PlainAndIPv6AddressesKeepTheOrderOfTheKernel) {
  EXPECT_EQ(
      collect({ipv4("192.0.2.9"), ipv6("2001:db8::9"), ipv4("192.0.2.5", "eth0:5"),
               ipv6("2001:db8::1"), ipv4("192.0.2.1"), ipv4("192.0.2.9"), ipv6("2001:db8::9")}),
      eth0With({.aliases = {{"5", {"192.0.2.5", 24}}},
                .primaryIPv4 = {{"192.0.2.9", 24}, {"192.0.2.1", 24}, {"192.0.2.9", 24}},
                .ipv6 = {{"2001:db8::9", 64}, {"2001:db8::1", 64}, {"2001:db8::9", 64}}}));
}

// --- IPv6 ---

TEST(AddressMessages, TheLabelOfAnIPv6AddressIsIgnored) {
  AddressMessage message = ipv6("2001:db8::1");
  message.attributes.push_back(labelAttribute("eth0:1"));
  EXPECT_EQ(collect({message}), onlyIPv6);
}

TEST(AddressMessages, TheAddressColonColonTwoIsNeverManaged) {
  EXPECT_EQ(collect({ipv6("::2")}), nothing);  // not even an entry for the interface
  EXPECT_EQ(collect({ipv6("::3"), ipv6("::2"), ipv6("::1:0:0:2"), ipv6("2::2"), ipv6("::22")}),
            eth0With({.ipv6 = {{"::3", 64}, {"::1:0:0:2", 64}, {"2::2", 64}, {"::22", 64}}}));
  // The local address of a point-to-point link decides.
  AddressMessage own = ipv6("2001:db8::1");
  own.attributes.push_back(localAttribute("::2"));
  AddressMessage peer = ipv6("::2");
  peer.attributes.push_back(localAttribute("2001:db8::1"));
  EXPECT_EQ(collect({own, peer}), onlyIPv6);
}

TEST(AddressMessages, AddressesAreAddedToWhatTheDumpHolds) {
  AddressDump dump =
      eth0With({.aliases = {{"1", {"198.51.100.1", 32}}}, .primaryIPv4 = {{"198.51.100.2", 32}}});
  AddressCollector collector(dump, false, nameOfInterface);
  const ExactBytes datagram(datagramOf({ipv4("192.0.2.1", "eth0:1"), ipv4("192.0.2.2")}));
  collector.collect(datagram.span());
  EXPECT_EQ(dump, eth0With({.aliases = {{"1", {"198.51.100.1", 32}}},
                            .primaryIPv4 = {{"198.51.100.2", 32}, {"192.0.2.2", 24}}}));
}

// --- the datagram as a whole ---

TEST(ClassifyDatagram, DependsOnTheFirstMessageOnly) {
  const std::string address = datagramOf({ipv4("192.0.2.1", "eth0:12")});
  const std::string done = headerOnly(16, NLMSG_DONE);
  const std::string error = headerOnly(16, NLMSG_ERROR);
  const std::vector<std::pair<std::string, DatagramKind>> table{
      {address, DatagramKind::Addresses},
      {address + done, DatagramKind::Addresses},
      {address + error, DatagramKind::Addresses},
      {done, DatagramKind::EndOfDump},
      {done + address, DatagramKind::EndOfDump},
      {done + error, DatagramKind::EndOfDump},
      {error, DatagramKind::Malformed},
      {error + address, DatagramKind::Malformed},
      {headerOnly(16, NLMSG_NOOP), DatagramKind::Addresses},
      {headerOnly(16, 0xFFFF), DatagramKind::Addresses},
  };
  for (const auto& [bytes, kind] : table) {
    const ExactBytes datagram(bytes);
    EXPECT_EQ(classifyDatagram(datagram.span()), kind);
  }
}

TEST(ClassifyDatagram, AnImpossibleFirstLengthIsMalformed) {
  const auto isMalformed = [](const std::string& bytes) {
    return classifyDatagram(ExactBytes(bytes).span()) == DatagramKind::Malformed;
  };
  for (const std::uint16_t type : {std::uint16_t{RTM_NEWADDR}, std::uint16_t{NLMSG_DONE}}) {
    const std::string whole = headerOnly(16, type);
    for (std::size_t size = 0; size < whole.size(); ++size) {
      EXPECT_TRUE(isMalformed(whole.substr(0, size))) << size << " bytes";
    }
    for (const std::uint32_t length :
         {0U, 1U, 15U, 16U, 17U, 20U, 21U, 0x7FFFFFFFU, 0x80000010U, 0xFFFFFFFDU, 0xFFFFFFFFU}) {
      EXPECT_EQ(isMalformed(headerOnly(length, type) + "four"), length < 16 || length > 20)
          << "length " << length;
    }
  }
}

}  // namespace
}  // namespace addrtool::testing
