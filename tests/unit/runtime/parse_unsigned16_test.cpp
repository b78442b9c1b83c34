#include "runtime/parse_unsigned16.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <map>
#include <string>
#include <tuple>

namespace addrtool::testing {
namespace {

constexpr std::uint16_t untouched = 4711;
constexpr int untouchedErrno = EXDEV;

// The result, the value and errno.
using Parsed = std::tuple<int, std::uint16_t, int>;

Parsed parse(const std::string& text) {
  std::uint16_t value = untouched;
  errno = untouchedErrno;
  const int result = parseUnsigned16(text.c_str(), &value);
  return {result, value, errno};
}

TEST(ParseUnsigned16, AcceptsDigitsWithWhiteSpaceAndOnePlus) {
  const std::map<std::string, std::uint16_t> table{
      {"0", 0},         {"64", 64},         {"128", 128},
      {"9", 9},         {"65535", 65535},   {"0000000000000000000065535", 65535},
      {"007", 7},       {" \t\n\r64", 64},  {"64 \t\n\r", 64},
      {" 64\n", 64},    {"+64", 64},        {" +64 ", 64},
      {"+ 64", 64},     {"+ \t\n\r64", 64}, {"+ ", 0},
      {" + \t\n\r ", 0}};
  for (const auto& [text, number] : table)
    EXPECT_EQ(parse(text), Parsed(0, number, untouchedErrno)) << text;
}

TEST(ParseUnsigned16, RefusesEverythingElse) {
  for (const std::string text :
       {"",    " ",    " \t\n\r ", "-",   "-1",   "-0", " -1",  "-65536", "+",  " +", "++1", "+-1",
        "-+1", "+ +1", "1 2",      "1x",  "x1",   "x",  "0x10", "1.5",    "1+", "1-", "1 x", "6\v",
        "\f6", "\v6",  "+\v",      "1,0", "\xb2", "٣",  "1/",   "1:",     "/",  ":"}) {
    EXPECT_EQ(parse(text), Parsed(-1, untouched, untouchedErrno)) << text;
  }
}

TEST(ParseUnsigned16, ReportsERANGEAbove65535WhateverFollows) {
  for (const std::string text : {"65536", "65540", "99999", "100000", "4294967296", "4294967297",
                                 "18446744073709551617", "65536x", "655360", "+65536", " 70000 "}) {
    EXPECT_EQ(parse(text), Parsed(-1, untouched, ERANGE)) << text;
  }
}

TEST(ParseUnsigned16, AcceptsOrRefusesAMillionDigitsTheSameWay) {
  EXPECT_EQ(parse(std::string(1000000, '9')), Parsed(-1, untouched, ERANGE));
  std::string eight(1000000, '0');
  eight += '8';
  EXPECT_EQ(parse(eight), Parsed(0, 8, untouchedErrno));
}

}  // namespace
}  // namespace addrtool::testing
