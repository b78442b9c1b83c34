#include "changes/add_address.h"

#include <map>

#include "support/canned_machine.h"
#include "support/child_process.h"

namespace addrtool::testing {
namespace {

AliasMap aliasesWith(const std::vector<std::string>& suffixes) {
  AliasMap aliases;
  for (const std::string& suffix : suffixes) aliases[suffix] = {"192.0.2.10", 24};
  return aliases;
}

TEST(AliasNumber, IsTheLowestFreeOne) {
  const std::map<std::vector<std::string>, std::string> table{
      {{}, "1"},
      {{"1"}, "2"},
      {{"2"}, "1"},
      {{"1", "2", "10"}, "3"},
      {{"1", "2", "4"}, "3"},
      {{"0"}, "1"},
      {{"1", "2", "3", "4", "5", "6", "7", "8", "9"}, "10"},
      {{"1", "65535"}, "2"}};
  for (const auto& [taken, free] : table) {
    EXPECT_EQ(lowestFreeAliasNumber(aliasesWith(taken)), free) << ::testing::PrintToString(taken);
  }
}

TEST(AliasNumber, IsTakenOnlyByExactlyItsText) {
  for (const char* suffix : {"web", "", "01", "+1", " 1", "1 ", "1:1", "1a", "65537", "0x1"}) {
    EXPECT_EQ(lowestFreeAliasNumber(aliasesWith({suffix})), "1") << '"' << suffix << '"';
  }
}

TEST(AliasNumber, GoesUpTo65535AndIsEmptyWhenAllAreTaken) {
  AliasMap aliases;
  for (const auto& [last, free] : std::map<unsigned, std::string>{
           {9, "10"}, {99, "100"}, {999, "1000"}, {9999, "10000"}, {65534, "65535"}, {65535, ""}}) {
    while (aliases.size() < last) aliases[std::to_string(aliases.size() + 1)] = {};
    EXPECT_EQ(lowestFreeAliasNumber(aliases), free);
  }
}

TEST(AliasNumber, TheAddFailsBeforeAnyCommandWhenAllAreTaken) {
  CannedMachine machine;
  for (int number = 1; number <= 65535; ++number) {
    const Attribute label = labelAttribute("eth0:" + std::to_string(number));
    machine.replies.push_back(
        {datagramOf({{.attributes = {addressAttribute("10.0.0.1"), label}}})});
  }
  machine.replies.push_back({headerOnly(16, NLMSG_DONE)});
  EXPECT_EQ(failureOf([] { addIPv4Address("eth0", {"192.0.2.10", 24}); }),
            "eth0: no free alias number.");
  EXPECT_EQ(machine.commands, std::vector<std::string>{});
}

}  // namespace
}  // namespace addrtool::testing
