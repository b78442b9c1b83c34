#include "runtime/parse_unsigned16.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <string>
#include <utility>
#include <vector>

namespace addrtool::testing {
namespace {

constexpr std::uint16_t untouched = 4711;

TEST(ParseUnsigned16, AcceptsDigitsWithWhiteSpaceAndOnePlus) {
  const std::vector<std::pair<std::string, std::uint16_t>> table{
      {"0", 0},          {"64", 64},         {"128", 128},
      {"9", 9},          {"65535", 65535},   {"0000000000000000000065535", 65535},
      {"007", 7},        {" \t\n\r64", 64},  {"64 \t\n\r", 64},
      {" 64\n", 64},     {"+64", 64},        {" +64 ", 64},
      {"+ 64", 64},      {"+ \t\n\r64", 64}, {"+ ", 0},
      {" + \t\n\r ", 0},
  };
  for (const auto& [text, number] : table) {
    std::uint16_t value = untouched;
    errno = 0;
    EXPECT_EQ(parseUnsigned16(text.c_str(), &value), 0) << "for '" << text << "'";
    EXPECT_EQ(value, number) << "for '" << text << "'";
    EXPECT_EQ(errno, 0) << "for '" << text << "'";
  }
}

TEST(ParseUnsigned16, RefusesEverythingElse) {
  for (const std::string text :
       {"",    " ",    " \t\n\r ", "-",   "-1",   "-0", " -1",  "-65536", "+",  " +", "++1", "+-1",
        "-+1", "+ +1", "1 2",      "1x",  "x1",   "x",  "0x10", "1.5",    "1+", "1-", "1 x", "6\v",
        "\f6", "\v6",  "+\v",      "1,0", "\xb2", "٣",  "1/",   "1:",     "/",  ":"}) {
    std::uint16_t value = untouched;
    errno = 0;
    EXPECT_EQ(parseUnsigned16(text.c_str(), &value), -1) << "for '" << text << "'";
    EXPECT_EQ(value, untouched) << "for '" << text << "'";
    EXPECT_EQ(errno, 0) << "for '" << text << "'";
  }
}

TEST(ParseUnsigned16, ReportsERANGEAbove65535WhateverFollows) {
  for (const std::string text : {"65536", "65540", "99999", "100000", "4294967296", "4294967297",
                                 "18446744073709551617", "65536x", "655360", "+65536", " 70000 "}) {
    std::uint16_t value = untouched;
    errno = 0;
    EXPECT_EQ(parseUnsigned16(text.c_str(), &value), -1) << "for '" << text << "'";
    EXPECT_EQ(value, untouched) << "for '" << text << "'";
    EXPECT_EQ(errno, ERANGE) << "for '" << text << "'";
  }
}

TEST(ParseUnsigned16, AcceptsOrRefusesAMillionDigitsTheSameWay) {
  std::uint16_t value = untouched;
  EXPECT_EQ(parseUnsigned16(std::string(1000000, '9').c_str(), &value), -1);
  EXPECT_EQ(parseUnsigned16((std::string(1000000, '0') + "8").c_str(), &value), 0);
  EXPECT_EQ(value, 8);
}

}  // namespace
}  // namespace addrtool::testing
