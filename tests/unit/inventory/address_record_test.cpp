#include "inventory/address_record.h"

#include <gtest/gtest.h>

#include <map>
#include <tuple>

#include "support/child_process.h"

namespace addrtool::testing {
namespace {

TEST(PrefixToNetmask, ReturnsTheDottedMaskOfALengthModulo32) {
  // The shift wraps, so a length of 0 gives the full mask as well.
  const std::map<std::uint16_t, std::string> table{
      {0, "255.255.255.255"},    {1, "128.0.0.0"},        {8, "255.0.0.0"},
      {9, "255.128.0.0"},        {16, "255.255.0.0"},     {24, "255.255.255.0"},
      {30, "255.255.255.252"},   {31, "255.255.255.254"}, {32, "255.255.255.255"},
      {33, "128.0.0.0"},         {64, "255.255.255.255"}, {128, "255.255.255.255"},
      {65535, "255.255.255.254"}};
  for (const auto& [length, netmask] : table) {
    EXPECT_EQ(prefixToNetmask({"192.0.2.1", length}), netmask) << "for length " << length;
  }
}

TEST(NetmaskToPrefix, UsesTheLowestBitEvenOfAMaskWithGaps) {
  const std::map<std::string, std::uint16_t> table{
      {"128.0.0.0", 1},        {"255.0.0.0", 8}, {"255.255.255.0", 24}, {"255.255.255.252", 30},
      {"255.255.255.255", 32}, {"0.0.0.0", 0},   {"255.0.255.0", 24},   {"0.0.0.255", 32},
      {"0.0.0.1", 32},         {"0.0.128.0", 17}};
  for (const auto& [netmask, length] : table) {
    EXPECT_EQ(netmaskToPrefix(netmask), length) << "for " << netmask;
  }
}

TEST(NetmaskToPrefix, RefusesAnInvalidMask) {
  for (const std::string text : {"24", "255.255.255", "", "255.255.255.256", "255.255.255.00",
                                 "255.255.255.0 ", "ffff::", "mask"}) {
    EXPECT_EQ(failureOf([&] { netmaskToPrefix(text); }), text + ": cannot convert to netmask");
  }
}

TEST(IsSameIPv6Address, ComparesTheValuesNotTheTexts) {
  const std::vector<std::tuple<std::string, std::string, bool>> table{
      {"2001:db8::1", "2001:DB8:0::1", true},
      {"2001:db8::1", "2001:db8::2", false},
      {"::ffff:192.0.2.1", "::FFFF:c000:201", true},
      {"::ffff:192.0.2.1", "::ffff:192.0.2.2", false},
      {"::ffff:192.0.2.1", "::192.0.2.1", false},
      // A text that is no IPv6 address equals nothing, not even itself.
      {"192.0.2.1", "192.0.2.1", false},
      {"192.0.2.1", "::ffff:192.0.2.1", false},
      {"::1", "", false},
  };
  for (const auto& [one, other, isSame] : table) {
    EXPECT_EQ(isSameIPv6Address(one, other), isSame) << one << " and " << other;
    EXPECT_EQ(isSameIPv6Address(other, one), isSame) << other << " and " << one;
  }
}

}  // namespace
}  // namespace addrtool::testing
