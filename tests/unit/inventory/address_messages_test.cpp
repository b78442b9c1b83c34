#include "inventory/address_messages.h"

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <netinet/in.h>

#include <algorithm>
#include <array>

#include "support/child_process.h"
#include "support/collect.h"

namespace addrtool::testing {
namespace {

// The message with another value in one field, or with one more attribute.
template <typename T>
AddressMessage with(T AddressMessage::* field, unsigned value, AddressMessage message) {
  message.*field = static_cast<T>(value);
  return message;
}
AddressMessage with(const Attribute& attribute, AddressMessage message) {
  message.attributes.push_back(attribute);
  return message;
}

AddressMessage onInterface(std::uint32_t index, const AddressMessage& message) {
  return with(&AddressMessage::index, index, message);
}

AddressMessage withLabel(const std::string& label) {
  return ipv4("192.0.2.1", label);
}

// An IPv4 message that has only these attributes.
AddressMessage having(std::vector<Attribute> attributes) {
  return {.attributes = std::move(attributes)};
}

const Attribute plainAttribute = addressAttribute("192.0.2.1");
const AddressDump plainIPv6 = eth0With({.ipv6 = {{"2001:db8::1", 64}}});

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

// The other tests compare dumps, so a comparison must see each difference.
TEST(AddressMessages, DumpsDifferInEachPart) {
  const std::vector<AddressDump> dumps{plainIPv4,
                                       plainIPv6,
                                       alias("1"),
                                       alias("2"),
                                       nothing,
                                       eth0With({.primaryIPv4 = {{"192.0.2.2", 24}}}),
                                       eth0With({.primaryIPv4 = {{"192.0.2.1", 25}}})};
  for (const AddressDump& one : dumps) EXPECT_EQ(std::ranges::count(dumps, one), 1);
}

// --- which messages count ---

TEST(AddressMessages, OnlyTheFamiliesOfInternetAddressesCount) {
  const AddressMessage fitsBoth = having({addressAttribute("2001:db8::1")});
  for (unsigned family = 0; family < 256; ++family) {
    EXPECT_EQ(collect({with(&AddressMessage::family, family, fitsBoth)}).empty(),
              family != AF_INET && family != AF_INET6)
        << "family " << family;
  }
}

TEST(AddressMessages, TheTypeAndTheFlagsOfAMessageAreIgnored) {
  for (unsigned bit = 0; bit < 16; ++bit) {
    for (const unsigned value : {bit, bit + 16, 1U << bit, 0xFFFFU ^ (1U << bit)}) {
      SCOPED_TRACE(value);
      EXPECT_EQ(collect({with(&AddressMessage::type, value, ipv4())}), plainIPv4);
      EXPECT_EQ(collect({with(&AddressMessage::messageFlags, value, ipv4())}), plainIPv4);
    }
  }
}

TEST(AddressMessages, OnlyPermanentIPv6AddressesCountAndIPv4FlagsAreIgnored) {
  for (unsigned flags = 0; flags < 256; ++flags) {
    SCOPED_TRACE(flags);
    const bool isManaged = (flags & 0x80U) != 0 && (flags & 0x01U) == 0;
    EXPECT_EQ(collect({with(&AddressMessage::flags, flags, ipv4())}), plainIPv4);
    EXPECT_EQ(collect({with(&AddressMessage::flags, flags, ipv6())}),
              isManaged ? plainIPv6 : nothing);
  }
}

TEST(AddressMessages, TheFlagsAttributeIsIgnored) {
  const Attribute temporary{IFA_FLAGS, {'\x01', 0, 0, 0}};
  const Attribute permanent{IFA_FLAGS, {'\x80', 0, 0, 0}};
  EXPECT_EQ(collect({with(temporary, ipv6()),
                     with(&AddressMessage::flags, 0, with(permanent, ipv6("2001:db8::2")))}),
            plainIPv6);
}

TEST(AddressMessages, OnlyUniverseScopeAndOnRequestHostScopeCount) {
  for (unsigned scope = 0; scope < 256; ++scope) {
    for (const AddressMessage& message : {ipv4(), ipv6(), ipv4("127.0.0.1", "lo")}) {
      const std::vector<AddressMessage> scoped{with(&AddressMessage::scope, scope, message)};
      EXPECT_EQ(collect(scoped, false).size(), scope == 0 ? 1U : 0U) << "scope " << scope;
      EXPECT_EQ(collect(scoped, true).size(), scope == 0 || scope == 254 ? 1U : 0U)
          << "scope " << scope;
    }
  }
}

TEST(AddressMessages, ASkippedMessageDoesNotEndTheDatagram) {
  const AddressMessage linkLocal = with(&AddressMessage::scope, RT_SCOPE_LINK, ipv6("fe80::1"));
  EXPECT_EQ(collect({linkLocal, {.family = AF_UNIX}, {}, ipv4()}), plainIPv4);
}

// --- the name of the interface ---

TEST(AddressMessages, TheIndexNamesTheInterfaceNotTheLabel) {
  EXPECT_EQ(collect({onInterface(3, ipv4("192.0.2.3")), onInterface(2, ipv4("192.0.2.2", "eth0")),
                     onInterface(1, ipv4()), onInterface(2, ipv6()),
                     onInterface(2, ipv4("192.0.2.1", "eth0:1"))}),
            (AddressDump{{"eth0", {.primaryIPv4 = {{"192.0.2.1", 24}}}},
                         {"eth1",
                          {.aliases = {{"1", {"192.0.2.1", 24}}},
                           .primaryIPv4 = {{"192.0.2.2", 24}},
                           .ipv6 = {{"2001:db8::1", 64}}}},
                         {"lo", {.primaryIPv4 = {{"192.0.2.3", 24}}}}}));
}

TEST(AddressMessages, InterfacesAndAliasesComeInTheOrderOfUnsignedBytes) {
  std::vector<AddressMessage> messages{onInterface(2, ipv4()), onInterface(1, ipv4())};
  for (const std::string suffix : {"\xff", "b", "a", "B", "10", "2", "1", ""}) {
    messages.push_back(onInterface(1, withLabel("e:" + suffix)));
  }
  std::string order;
  for (const auto& [name, addresses] :
       collect({datagramOf(messages)}, false, [](unsigned i) { return i == 1 ? "\xff" : "a"; })) {
    order += name + ' ';
    for (const auto& [suffix, record] : addresses.aliases) order += ':' + suffix + ' ';
  }
  EXPECT_EQ(order, "a \xff : :1 :10 :2 :B :a :b :\xff ");
}

using Indexes = std::vector<unsigned>;

// Collects the datagrams and returns the indexes whose names were looked up.
Indexes lookedUp(const std::vector<std::string>& datagrams) {
  Indexes indexes;
  collect(datagrams, false, [&indexes](unsigned index) {
    indexes.push_back(index);
    return "if" + std::to_string(index);
  });
  return indexes;
}

TEST(AddressMessages, TheNameIsLookedUpOncePerRunOfEqualIndexes) {
  const std::string first = datagramOf({onInterface(7, ipv4()), onInterface(7, ipv6()),
                                        onInterface(8, ipv4()), onInterface(7, ipv4())});
  const std::string second = datagramOf({onInterface(7, ipv4()), onInterface(9, ipv4())});
  EXPECT_EQ(lookedUp({first, second}), (Indexes{7, 8, 7, 9}));
  EXPECT_EQ(lookedUp({datagramOf({onInterface(0, ipv4())})}), Indexes{0});
}

TEST(AddressMessages, TheNameOfAnUnmanagedAddressIsNotLookedUp) {
  EXPECT_EQ(lookedUp({datagramOf({with(&AddressMessage::family, AF_UNIX, ipv4()),
                                  with(&AddressMessage::scope, RT_SCOPE_LINK, ipv4()),
                                  with(&AddressMessage::flags, 0, ipv6())})}),
            Indexes{});
}

TEST(AddressMessages, AFailedNameLookupIsPassedOn) {
  AddressMessage badAttribute = ipv4();
  badAttribute.attributes.front().claimedLength = 0;
  // Even if its attributes are malformed or its address would be skipped.
  for (const AddressMessage& message : {ipv4(), ipv6(), ipv6("::2"), {}, badAttribute}) {
    EXPECT_EQ(failureOf([&] { collect({onInterface(99, message)}); }), "no interface 99");
  }
}

// --- the address ---

TEST(AddressMessages, TheLocalAddressOfAPointToPointLinkCounts) {
  const AddressMessage peer4 = having({addressAttribute("192.0.2.2"), localAttribute("192.0.2.1")});
  const AddressMessage peer6{
      .family = AF_INET6,
      .prefixLength = 128,
      .attributes = {localAttribute("2001:db8::1"), addressAttribute("2001:db8::2")}};
  EXPECT_EQ(collect({with(&AddressMessage::prefixLength, 32, peer4), peer6}),
            eth0With({.primaryIPv4 = {{"192.0.2.1", 32}}, .ipv6 = {{"2001:db8::1", 128}}}));
}

TEST(AddressMessages, OnlyAMessageWithAnAddressAttributeCounts) {
  EXPECT_EQ(collect({having({localAttribute("192.0.2.1"), labelAttribute("eth0")}),
                     {.family = AF_INET6, .attributes = {localAttribute("2001:db8::1")}},
                     {}}),
            nothing);
  EXPECT_EQ(collect({having({plainAttribute})}), plainIPv4);
}

TEST(AddressMessages, ALaterAttributeReplacesAnEarlierOneOfItsType) {
  const Attribute two = addressAttribute("192.0.2.2");
  EXPECT_EQ(
      collect({having({two, labelAttribute("eth0:1"), plainAttribute, labelAttribute("eth0:2")})}),
      alias("2"));
  EXPECT_EQ(collect({having({two, localAttribute("192.0.2.3"), localAttribute("192.0.2.1"),
                             labelAttribute("eth0:1"), labelAttribute("")})}),
            plainIPv4);
  // Even an attribute without a payload.
  EXPECT_EQ(collect({having({plainAttribute, labelAttribute("eth0:1"), {IFA_LABEL, ""}})}),
            plainIPv4);
}

TEST(AddressMessages, AttributesOfOtherTypesAreIgnored) {
  for (const int type : {0, 4, 5, 6, 7, 8, 9, 10, 11, 255, 0x0101, 0x0102, 0x0103, 0x4001, 0x8001,
                         0x8002, 0x8003, 0xFFFF}) {
    const Attribute other{static_cast<std::uint16_t>(type), "eth0:1 and more bytes"};
    EXPECT_EQ(collect({having({other, plainAttribute, other})}), plainIPv4) << "type " << type;
  }
}

TEST(AddressMessages, AnyAddressCountsAndIsWrittenAsInetNtopWritesIt) {
  for (const char* text : {"0.0.0.0", "127.0.0.1", "169.254.1.1", "192.0.2.255", "224.0.0.1"}) {
    EXPECT_EQ(collect({ipv4(text)}), eth0With({.primaryIPv4 = {{text, 24}}}));
  }
  for (const auto& [given, text] :
       {std::pair("2001:0DB8:0:0:0:0:0:0010", "2001:db8::10"),
        {"2001:db8:0:1:0:0:0:1", "2001:db8:0:1::1"},
        {"0:0:0:0:0:ffff:192.0.2.1", "::ffff:192.0.2.1"},
        {"::", "::"},
        {"::1", "::1"},
        {"FC00::1", "fc00::1"},
        {"FD00::1", "fd00::1"},
        {"FE80::1", "fe80::1"},
        {"FEC0::1", "fec0::1"},
        {"FF02::1", "ff02::1"},
        {"FFFF:FFFF:FFFF:FFFF:FFFF:FFFF:FFFF:FFFF", "ffff:ffff:ffff:ffff:ffff:ffff:ffff:ffff"}}) {
    EXPECT_EQ(collect({ipv6(given)}), eth0With({.ipv6 = {{text, 64}}}));
  }
}

TEST(AddressMessages, ThePrefixLengthIsNotChecked) {
  for (const std::uint8_t length : std::vector<std::uint8_t>{0, 1, 32, 64, 128, 255}) {
    EXPECT_EQ(
        collect({with(&AddressMessage::prefixLength, length, ipv4()),
                 with(&AddressMessage::prefixLength, length, ipv6())}),
        eth0With({.primaryIPv4 = {{"192.0.2.1", length}}, .ipv6 = {{"2001:db8::1", length}}}));
  }
}

// --- IPv4: plain or alias ---

TEST(AddressMessages, ALabelWithoutAColonIsPlain) {
  for (const std::string label : {"eth0", "", "lo", "eth0.5", "1"}) {
    EXPECT_EQ(collect({withLabel(label)}), plainIPv4) << "label " << label;
  }
}

TEST(AddressMessages, TheSuffixIsTheTextAfterTheFirstColonOfTheLabel) {
  for (const auto& [label, suffix] : {std::pair("eth0:1", "1"),
                                      {"eth0:web:2", "web:2"},
                                      {"eth0:", ""},
                                      {":1", "1"},
                                      {"eth1:5", "5"},
                                      {"eth0::", ":"}}) {
    EXPECT_EQ(collect({withLabel(label)}), alias(suffix)) << "label " << label;
  }
}

TEST(AddressMessages, ALabelEndsAtItsNulOrAtTheEndOfItsAttribute) {
  const std::vector<std::pair<std::string, AddressDump>> table{
      {{'e', ':', '1', '\0', '2'}, alias("1")},
      {{'e', '\0', ':', '1', '\0'}, plainIPv4},
      {"e:12", alias("12")},
      {"e:123", alias("123")},
      {"", plainIPv4}};
  for (const auto& [payload, expected] : table) {
    const Attribute label{IFA_LABEL, payload};
    EXPECT_EQ(collect({having({plainAttribute, label})}), expected);
    EXPECT_EQ(collect({having({label, plainAttribute})}), expected);
  }
}

TEST(AddressMessages, AliasesAreSortedPerInterfaceInWhateverOrderTheyCome) {
  std::vector<AddressMessage> messages;
  AddressDump expected;
  for (const std::string suffix : {"3", "1", "web", "10", "2"}) {
    for (const std::uint32_t index : {1U, 2U}) {
      const std::string address = "192.0.2." + std::to_string(messages.size());
      messages.push_back(onInterface(index, ipv4(address, "eth0:" + suffix)));
      expected[nameOfInterface(index)].aliases[suffix] = {address, 24};
    }
  }
  EXPECT_EQ(collect(messages), expected);
  std::ranges::reverse(messages);
  EXPECT_EQ(collect(messages), expected);
}

TEST(AddressMessages, TheFirstOfTwoAddressesWithOneSuffixIsKept) {
  const std::string first = datagramOf({withLabel("eth0:1"), ipv4("192.0.2.2", "eth0:1")});
  const std::string second = datagramOf({ipv4("192.0.2.3", "eth0:1")});
  EXPECT_EQ(collect({first, second}), alias("1"));
}

TEST(AddressMessages, PlainAndIPv6AddressesKeepTheOrderOfTheKernel) {
  EXPECT_EQ(collect({ipv4("192.0.2.9"), ipv6("2001:db8::9"), ipv4("192.0.2.5", "eth0:5"), ipv6(),
                     ipv4(), ipv4("192.0.2.9"), ipv6("2001:db8::9")}),
            eth0With({.aliases = {{"5", {"192.0.2.5", 24}}},
                      .primaryIPv4 = {{"192.0.2.9", 24}, {"192.0.2.1", 24}, {"192.0.2.9", 24}},
                      .ipv6 = {{"2001:db8::9", 64}, {"2001:db8::1", 64}, {"2001:db8::9", 64}}}));
}

// --- IPv6 ---

TEST(AddressMessages, TheLabelOfAnIPv6AddressIsIgnored) {
  EXPECT_EQ(collect({with(labelAttribute("eth0:1"), ipv6())}), plainIPv6);
}

TEST(AddressMessages, TheAddressColonColonTwoIsNeverManaged) {
  EXPECT_EQ(collect({ipv6("::2")}), nothing);  // not even an entry for the interface
  EXPECT_EQ(collect({ipv6("::3"), ipv6("::2"), ipv6("::1:0:0:2"), ipv6("2::2"), ipv6("::22")}),
            eth0With({.ipv6 = {{"::3", 64}, {"::1:0:0:2", 64}, {"2::2", 64}, {"::22", 64}}}));
  // The local address of a point-to-point link decides.
  EXPECT_EQ(collect({with(localAttribute("::2"), ipv6()),
                     with(localAttribute("2001:db8::1"), ipv6("::2"))}),
            plainIPv6);
}

TEST(AddressMessages, AddressesAreAddedToWhatTheDumpHolds) {
  AddressDump dump = alias("1");
  dump["eth0"].primaryIPv4 = {{"198.51.100.2", 32}};
  AddressCollector collector(dump, false, nameOfInterface);
  const ExactBytes datagram(datagramOf({ipv4("192.0.2.3", "eth0:1"), ipv4()}));
  collector.collect(datagram.span());
  EXPECT_EQ(dump, eth0With({.aliases = {{"1", {"192.0.2.1", 24}}},
                            .primaryIPv4 = {{"198.51.100.2", 32}, {"192.0.2.1", 24}}}));
}

// --- the datagram as a whole ---

DatagramKind kindOf(const std::string& datagram) {
  return classifyDatagram(ExactBytes(datagram).span());
}

TEST(ClassifyDatagram, DependsOnTheFirstMessageOnly) {
  const std::string address = datagramOf({withLabel("eth0:12")});
  const std::string done = headerOnly(16, NLMSG_DONE);
  const std::string error = headerOnly(16, NLMSG_ERROR);
  for (const std::string& rest : {std::string(), address, done, error}) {
    EXPECT_EQ(kindOf(done + rest), DatagramKind::EndOfDump);
    EXPECT_EQ(kindOf(error + rest), DatagramKind::Malformed);
    EXPECT_EQ(kindOf(address + rest), DatagramKind::Addresses);
  }
}

TEST(ClassifyDatagram, AnImpossibleFirstLengthIsMalformed) {
  for (const std::uint16_t type : std::vector<std::uint16_t>{RTM_NEWADDR, NLMSG_DONE}) {
    for (std::size_t size = 0; size < 16; ++size) {
      EXPECT_EQ(kindOf(headerOnly(16, type).substr(0, size)), DatagramKind::Malformed) << size;
    }
    for (const std::uint32_t length :
         {0U, 1U, 15U, 16U, 17U, 20U, 21U, 0x7FFFFFFFU, 0x80000010U, 0xFFFFFFFDU, 0xFFFFFFFFU}) {
      EXPECT_EQ(kindOf(headerOnly(length, type) + "four") == DatagramKind::Malformed,
                length < 16 || length > 20)
          << "length " << length;
    }
  }
}

TEST(ClassifyDatagram, TheErrorCodeIsNotRead) {
  for (const char byte : {'\0', '\1', '\xff'}) {
    const std::string code(4, byte);
    EXPECT_EQ(kindOf(headerOnly(20, NLMSG_DONE) + code), DatagramKind::EndOfDump);
    EXPECT_EQ(kindOf(headerOnly(20, NLMSG_ERROR) + code), DatagramKind::Malformed);
  }
}

// --- datagrams with wrong lengths ---

const AddressMessage otherMessage = having({addressAttribute("192.0.2.9")});
const AddressDump otherIPv4 = eth0With({.primaryIPv4 = {{"192.0.2.9", 24}}});
const AddressDump plainAndOther = eth0With({.primaryIPv4 = {{"192.0.2.1", 24}, {"192.0.2.9", 24}}});

TEST(MessageBounds, AMessageTooShortForItsHeadersIsSkippedAndTheNextIsRead) {
  const std::string headers = datagramOf({{}});
  ASSERT_EQ(headers.size(), 24U);
  for (std::uint32_t length = 16; length < 24; ++length) {
    const std::string cut = headerOnly(length, RTM_NEWADDR) + headers.substr(16, length - 16);
    EXPECT_EQ(collect({cut}), nothing) << length << " bytes";

    const std::string padding((4 - length % 4) % 4, '\0');
    EXPECT_EQ(collect({cut + padding + datagramOf({otherMessage})}), otherIPv4)
        << length << " bytes";
  }
}

TEST(MessageBounds, AnImpossibleLengthEndsTheDatagram) {
  const std::string rest = datagramOf({otherMessage});
  const auto tooLong = static_cast<std::uint32_t>(16 + rest.size() + 1);
  for (const std::uint32_t length : {0U, 1U, 15U, tooLong, 8192U, 0x7FFFFFFFU, 0x80000000U,
                                     0xFFFFFFFCU, 0xFFFFFFFDU, 0xFFFFFFFEU, 0xFFFFFFFFU}) {
    EXPECT_EQ(
        collect({datagramOf({having({plainAttribute})}) + headerOnly(length, RTM_NEWADDR) + rest}),
        plainIPv4)
        << "length " << length;
  }
}

TEST(MessageBounds, TheNextMessageBeginsAtAMultipleOfFourAndTheLastNeedsNoPadding) {
  for (const std::string label : {"eth0", "eth01", "eth012", "eth0123"}) {
    const AddressMessage message = having({plainAttribute, labelAttribute(label)});
    EXPECT_EQ(collect({message, otherMessage}), plainAndOther);
    for (std::size_t padding = 0; padding < 4; ++padding) {
      EXPECT_EQ(collect({datagramOf({message}) + std::string(padding, '\0')}), plainIPv4);
    }
  }
}

// Each read beyond the end is an error of the address sanitizer.
TEST(MessageBounds, ACutDatagramYieldsItsWholeMessages) {
  const Attribute flags{IFA_FLAGS, {'\x80', 0, 0, 0}};
  const Attribute times{IFA_CACHEINFO, std::string(16, '\xFF')};
  const std::vector<AddressMessage> all{
      ipv4(), with(times, with(flags, ipv6())),
      having({plainAttribute, localAttribute("192.0.2.9"), labelAttribute("eth0:web:2"), times}),
      otherMessage};
  std::vector<AddressMessage> whole;
  std::size_t size = 0;
  for (const AddressMessage& message : all) {
    const AddressDump expected = collect(whole);
    whole.push_back(message);
    const std::string datagram = datagramOf(whole);
    for (; size < datagram.size(); ++size) {
      EXPECT_EQ(collect({datagram.substr(0, size)}), expected) << size << " bytes";
    }
  }
}

TEST(MessageBounds, AMessageEndsWhereItsLengthSays) {
  // All bytes are in the datagram. Those after the end of the message are another message.
  AddressMessage message =
      having({plainAttribute, localAttribute("192.0.2.9"), labelAttribute("eth0:1")});
  const AddressDump asAlias = eth0With({.aliases = {{"1", {"192.0.2.9", 24}}}});
  for (std::uint32_t length = 24; length <= 51; ++length) {
    message.claimedLength = length;
    EXPECT_EQ(collect({message}), length < 32   ? nothing
                                  : length < 40 ? plainIPv4
                                  : length < 51 ? otherIPv4
                                                : asAlias)
        << "length " << length;
  }
}

TEST(AttributeBounds, AnImpossibleLengthEndsTheAttributes) {
  // The header of the bad attribute is followed by 4 bytes of its own and 8 of the next.
  const Attribute nextAddress = addressAttribute("192.0.2.2");
  for (const int length : {0, 1, 2, 3, 17, 0x7FFF, 0x8000, 0xFFFC, 0xFFFD, 0xFFFE, 0xFFFF}) {
    const Attribute bad{IFA_LABEL, "eth0", static_cast<std::uint16_t>(length)};
    EXPECT_EQ(collect({having({bad, nextAddress}), otherMessage}), otherIPv4)
        << "length " << length;
    EXPECT_EQ(collect({having({plainAttribute, bad, nextAddress}), otherMessage}), plainAndOther)
        << "length " << length;
  }
}

TEST(AttributeBounds, TheNextAttributeBeginsAtAMultipleOfFourAndTheLastNeedsNoPadding) {
  for (std::size_t size = 0; size < 9; ++size) {
    const Attribute other{IFA_CACHEINFO, std::string(size, 'x')};
    EXPECT_EQ(collect({having({other, plainAttribute})}), plainIPv4) << size << " bytes";
    EXPECT_EQ(collect({having({plainAttribute, other})}), plainIPv4) << size << " bytes";
  }
}

TEST(AttributeBounds, BytesTooFewForAHeaderAfterTheLastAttributeAreIgnored) {
  for (std::uint32_t size = 1; size < 4; ++size) {
    AddressMessage message = otherMessage;
    message.claimedLength = 32 + size;
    EXPECT_EQ(collect({datagramOf({message}) + std::string(size, '\4')}), otherIPv4)
        << size << " bytes";
  }
}

TEST(AttributeBounds, AnAttributeTooShortForAnAddressIsIgnored) {
  for (const AddressMessage& whole : {having({plainAttribute}), ipv6()}) {
    const std::string bytes = whole.attributes.front().payload;
    for (std::size_t size = 0; size < bytes.size(); ++size) {
      AddressMessage cut = whole;
      cut.attributes = {{IFA_ADDRESS, bytes.substr(0, size)}};
      EXPECT_EQ(collect({cut}), nothing) << size << " bytes";
      cut.attributes = {whole.attributes.front(), {IFA_LOCAL, bytes.substr(0, size)}};
      EXPECT_EQ(collect({cut}), collect({whole})) << size << " bytes";
    }
  }
}

TEST(AttributeBounds, TheFirstBytesOfALongAttributeAreTheAddress) {
  const Attribute longAddress{IFA_ADDRESS, addressBytes("192.0.2.7") + "more"};
  const Attribute longLocal{IFA_LOCAL, addressBytes("192.0.2.1") + "other bytes"};
  EXPECT_EQ(collect({having({longAddress, longLocal})}), plainIPv4);
}

}  // namespace
}  // namespace addrtool::testing
