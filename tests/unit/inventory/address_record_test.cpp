#include "inventory/address_record.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "support/child_process.h"

namespace addrtool::testing {
namespace {

TEST(PrefixToNetmask, ReturnsTheDottedMaskOfALength) {
  const std::vector<std::pair<std::uint16_t, std::string>> table{
      {1, "128.0.0.0"},        {8, "255.0.0.0"},       {9, "255.128.0.0"},
      {16, "255.255.0.0"},     {24, "255.255.255.0"},  {30, "255.255.255.252"},
      {31, "255.255.255.254"}, {32, "255.255.255.255"}};
  for (const auto& [length, netmask] : table) {
    EXPECT_EQ(prefixToNetmask({"192.0.2.1", length}), netmask) << "for length " << length;
  }
}

TEST(PrefixToNetmask, LengthZeroGivesTheFullMask) {
  EXPECT_EQ(prefixToNetmask({"192.0.2.1", 0}), "255.255.255.255");
}

TEST(NetmaskToPrefix, ReturnsTheLengthOfADottedMask) {
  const std::vector<std::pair<std::string, std::uint16_t>> table{
      {"128.0.0.0", 1},        {"255.0.0.0", 8},        {"255.255.255.0", 24},
      {"255.255.255.252", 30}, {"255.255.255.255", 32}, {"0.0.0.0", 0}};
  for (const auto& [netmask, length] : table) {
    EXPECT_EQ(netmaskToPrefix(netmask), length) << "for " << netmask;
  }
}

TEST(NetmaskToPrefix, UsesTheLowestBitOfAMaskWithGaps) {
  EXPECT_EQ(netmaskToPrefix("255.0.255.0"), 24);
  EXPECT_EQ(netmaskToPrefix("0.0.0.255"), 32);
  EXPECT_EQ(netmaskToPrefix("0.0.0.1"), 32);
  EXPECT_EQ(netmaskToPrefix("0.0.128.0"), 17);
}

TEST(NetmaskToPrefix, RefusesAnInvalidMask) {
  for (const std::string text :
       {"24", "255.255.255", "", "255.255.255.256", "255.255.255.0 ", "ffff::", "mask"}) {
    EXPECT_EQ(failureOf([&] { netmaskToPrefix(text); }), text + ": cannot convert to netmask");
  }
}

}  // namespace
}  // namespace addrtool::testing
