#include "changes/add_address.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace addrtool::testing {
namespace {

AliasMap aliasesWith(const std::vector<std::string>& suffixes) {
  AliasMap aliases;
  for (const std::string& suffix : suffixes) aliases[suffix] = {"192.0.2.10", 24};
  return aliases;
}

AliasMap aliasesUpTo(unsigned last) {
  AliasMap aliases;
  for (unsigned number = 1; number <= last; ++number) aliases[std::to_string(number)] = {};
  return aliases;
}

TEST(AliasNumber, IsTheLowestFreeOne) {
  struct Row {
    std::vector<std::string> taken;
    std::string free;
  };
  const std::vector<Row> rows{
      {{}, "1"},
      {{"1"}, "2"},
      {{"2"}, "1"},
      {{"1", "2", "10"}, "3"},
      {{"1", "2", "4"}, "3"},
      {{"0"}, "1"},
      {{"1", "2", "3", "4", "5", "6", "7", "8", "9"}, "10"},
      {{"1", "65535"}, "2"},
  };
  for (const auto& [taken, free] : rows) {
    EXPECT_EQ(lowestFreeAliasNumber(aliasesWith(taken)), free) << ::testing::PrintToString(taken);
  }
}

TEST(AliasNumber, IsTakenOnlyByExactlyItsText) {
  for (const char* suffix : {"web", "", "01", "+1", " 1", "1 ", "1:1", "1a", "65537", "0x1"}) {
    EXPECT_EQ(lowestFreeAliasNumber(aliasesWith({suffix})), "1") << '"' << suffix << '"';
  }
}

TEST(AliasNumber, GoesUpTo65535) {
  for (const unsigned taken : {9U, 99U, 999U, 9999U, 65534U}) {
    EXPECT_EQ(lowestFreeAliasNumber(aliasesUpTo(taken)), std::to_string(taken + 1));
  }
}

TEST(AliasNumber, IsEmptyWhenAllAreTaken) {
  EXPECT_EQ(lowestFreeAliasNumber(aliasesUpTo(65535)), "");
}

}  // namespace
}  // namespace addrtool::testing
