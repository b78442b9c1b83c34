#include "runtime/config_table.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "support/failing_call.h"
#include "support/log_recorder.h"

namespace addrtool::testing {
namespace {

constexpr const char* noMemory = "Unable to read configuration: Cannot allocate memory";

using Table = std::unique_ptr<RuntimeConfiguration, void (*)(RuntimeConfiguration*)>;

Table makeTable() {
  return {static_cast<RuntimeConfiguration*>(std::calloc(1, sizeof(RuntimeConfiguration))),
          freeConfig};
}

std::string nameOf(unsigned number) {
  return "NAME_" + std::to_string(number);
}

void fill(const Table& table, unsigned count) {
  for (unsigned i = table->count; i < count; ++i) {
    ASSERT_EQ(setConfigEntry(table.get(), nameOf(i).c_str(), "value"), 0);
  }
}

std::string textOf(const char* text) {
  return text == nullptr ? "(null)" : text;
}

std::string find(const Table& table, const char* name) {
  return textOf(findConfigEntry(table.get(), name));
}

std::vector<std::string> namesOf(const Table& table) {
  std::vector<std::string> names;
  for (std::uint32_t i = 0; i < table->count; ++i) names.emplace_back(table->entries[i].name);
  return names;
}

bool isFreeBeyondCount(const Table& table) {
  for (std::uint32_t i = table->count; i < table->capacity; ++i) {
    if (table->entries[i].name != nullptr || table->entries[i].value != nullptr) return false;
  }
  return true;
}

TEST(GrowConfig, FirstUseAllocatesTwentySlots) {
  const Table table = makeTable();
  table->count = 5;
  table->capacity = 7;
  EXPECT_EQ(growConfig(table.get()), 0);
  EXPECT_NE(table->entries, nullptr);
  EXPECT_EQ(table->capacity, 20U);
  EXPECT_EQ(table->count, 0U);
  EXPECT_EQ(table->sorted, 1);
  EXPECT_TRUE(isFreeBeyondCount(table));
}

TEST(GrowConfig, OutOfMemoryFailsSilentlyAtFirstUseAndIsLoggedLater) {
  const LogRecorder recorder;
  using Messages = std::vector<LoggedMessage>;
  for (const auto& [count, log] :
       {std::pair(0U, Messages{}), std::pair(20U, Messages{{12, noMemory}})}) {
    const Table table = makeTable();
    table->capacity = 7;
    fill(table, count);
    for (const bool isStore : {false, true}) {
      const FailingAllocations failing(1);
      errno = 0;
      EXPECT_EQ(isStore ? setConfigEntry(table.get(), "A", "1") : growConfig(table.get()), -1);
      EXPECT_EQ(errno, ENOMEM);
      EXPECT_EQ(LogRecorder::take(), log);
      EXPECT_EQ(table->entries == nullptr, count == 0);
      EXPECT_EQ(table->capacity, count);
      EXPECT_EQ(table->count, count);
    }
  }
}

TEST(GrowConfig, ATableWithAFreeSlotDoesNotGrow) {
  const Table table = makeTable();
  fill(table, 19);
  const FailingAllocations failing(1);
  EXPECT_EQ(growConfig(table.get()), 0);
  EXPECT_EQ(table->capacity, 20U);
  EXPECT_EQ(FailingAllocations::calls(), 0);
}

TEST(GrowConfig, AFullTableDoublesAndClearsTheNewSlots) {
  const Table table = makeTable();
  const std::vector<std::pair<unsigned, unsigned>> countsAndCapacities{
      {1, 20}, {20, 20}, {21, 40}, {40, 40}, {41, 80}, {80, 80}, {81, 160}};
  for (const auto& [count, capacity] : countsAndCapacities) {
    fill(table, count);
    EXPECT_EQ(table->count, count);
    EXPECT_EQ(table->capacity, capacity) << "for " << count << " entries";
    EXPECT_TRUE(isFreeBeyondCount(table)) << "for " << count << " entries";
  }
}

TEST(GrowConfig, FailsAboveTheLargestCapacityWithoutAllocating) {
  // These tables only claim to be this full. Every allocation fails.
  struct Row {
    std::uint32_t capacity;
    std::uint32_t count;
    int allocations;
  };
  const std::vector<Row> rows{
      {0x0FFFFFFF, 0x0FFFFFFF, 1}, {0x10000000, 0x10000000, 0}, {0x1FFFFFFE, 0x1FFFFFFE, 0},
      {0x7FFFFFFE, 0x7FFFFFFE, 0}, {0x7FFFFFFF, 0x7FFFFFFF, 0}, {0x80000000, 0x80000000, 0},
      {0xFFFFFFEB, 0xFFFFFFEB, 0}, {0xFFFFFFEC, 0xFFFFFFEC, 0}, {0xFFFFFFFF, 0xFFFFFFFF, 0},
      {0, 0x1FFFFFEA, 1},          {0, 0x1FFFFFEB, 0},          {0, 0, 0}};
  const LogRecorder log;
  for (const auto& [capacity, count, allocations] : rows) {
    ConfigEntry slot{};
    RuntimeConfiguration table{&slot, capacity, count, 0};
    const FailingAllocations failing(1);
    errno = 0;
    EXPECT_EQ(growConfig(&table), -1);
    EXPECT_EQ(errno, ENOMEM);
    EXPECT_EQ(FailingAllocations::calls(), allocations) << "for " << count << " entries";
    EXPECT_EQ(LogRecorder::take(), (std::vector<LoggedMessage>{{12, noMemory}}));
  }
}

TEST(GrowConfig, GrowsToTheEntriesPlusTwentyIfDoublingIsTooLittle) {
  // The second table is still full afterwards: 2 * 10 is not less than 20.
  for (const auto& [count, capacity, grown] : {std::tuple(5U, 2U, 25U), {20U, 10U, 20U}}) {
    const Table table = makeTable();
    fill(table, count);
    table->capacity = capacity;
    EXPECT_EQ(growConfig(table.get()), 0);
    EXPECT_EQ(table->capacity, grown);
    EXPECT_TRUE(isFreeBeyondCount(table));
  }
}

TEST(SetConfigEntry, StoresCopies) {
  const Table table = makeTable();
  std::string name = "NAME";
  std::string value = "value";
  EXPECT_EQ(setConfigEntry(table.get(), name.c_str(), value.c_str()), 0);
  name[0] = value[0] = 'x';
  EXPECT_EQ(find(table, "NAME"), "value");
  EXPECT_EQ(find(table, "xAME"), "(null)");
}

TEST(SetConfigEntry, TheLastDefinitionOfANameWins) {
  const Table table = makeTable();
  for (const auto& [name, value] : std::vector<std::pair<const char*, const char*>>{
           {"NAME", "1"}, {"NAM", "2"}, {"NAME", "3"}, {"NAM", ""}, {"NAME", "4"}, {"name", "5"}}) {
    EXPECT_EQ(setConfigEntry(table.get(), name, value), 0);
  }
  EXPECT_EQ(namesOf(table), (std::vector<std::string>{"NAME", "NAM", "name"}));
  EXPECT_EQ(find(table, "NAME"), "4");
  EXPECT_EQ(find(table, "NAM"), "");
  EXPECT_EQ(find(table, "name"), "5");
}

TEST(SetConfigEntry, OnlyANewNameClearsTheSortedFlag) {
  const Table table = makeTable();
  EXPECT_EQ(setConfigEntry(table.get(), "A", "1"), 0);
  EXPECT_EQ(table->sorted, 0);
  sortConfig(table.get());
  EXPECT_EQ(setConfigEntry(table.get(), "A", "2"), 0);
  EXPECT_EQ(table->sorted, 1);
  EXPECT_EQ(setConfigEntry(table.get(), "B", "3"), 0);
  EXPECT_EQ(table->sorted, 0);
}

TEST(SetConfigEntry, AFullTableGrowsEvenForAKnownName) {
  const Table table = makeTable();
  fill(table, 20);
  EXPECT_EQ(setConfigEntry(table.get(), nameOf(3).c_str(), "new"), 0);
  EXPECT_EQ(table->count, 20U);
  EXPECT_EQ(table->capacity, 40U);
}

TEST(SetConfigEntry, OutOfMemoryForACopyKeepsTheTable) {
  const LogRecorder log;
  const Table table = makeTable();
  EXPECT_EQ(setConfigEntry(table.get(), "A", "1"), 0);
  for (const char* const name : {"A", "B"}) {
    for (const auto& [first, last] : std::vector<std::pair<int, int>>{{1, 1}, {2, 2}, {1, 2}}) {
      const FailingAllocations failing(first, last);
      errno = 0;
      EXPECT_EQ(setConfigEntry(table.get(), name, "2"), -1);
      EXPECT_EQ(errno, ENOMEM);
      EXPECT_EQ(LogRecorder::take(),
                (std::vector<LoggedMessage>{
                    {12, "Unable to form configuration: Cannot allocate memory"}}));
      EXPECT_EQ(namesOf(table), (std::vector<std::string>{"A"}));
      EXPECT_EQ(find(table, "A"), "1");
    }
  }
}

TEST(SortConfig, OrdersTheNamesByTheirBytes) {
  const Table table = makeTable();
  for (const char* const name : {"b", "B", "a_", "aB", "a", "9", "_", "\xe4", "a1"}) {
    EXPECT_EQ(setConfigEntry(table.get(), name, name), 0);
  }
  sortConfig(table.get());
  EXPECT_EQ(table->sorted, 1);
  EXPECT_EQ(namesOf(table),
            (std::vector<std::string>{"9", "B", "_", "a", "a1", "aB", "a_", "b", "\xe4"}));
  EXPECT_EQ(find(table, "a1"), "a1");

  const Table empty = makeTable();
  sortConfig(empty.get());
  EXPECT_EQ(empty->sorted, 1);
}

TEST(FindConfigEntry, FindsEveryNameAndNoOther) {
  for (const unsigned count : {0U, 1U, 2U, 3U, 25U, 41U}) {
    const Table table = makeTable();
    for (unsigned i = 0; i < count; ++i) {
      EXPECT_EQ(setConfigEntry(table.get(), nameOf(i).c_str(), std::to_string(i).c_str()), 0);
    }
    for (const bool sorted : {false, true}) {
      if (sorted) sortConfig(table.get());
      for (unsigned i = 0; i < count; ++i) {
        EXPECT_EQ(find(table, nameOf(i).c_str()), std::to_string(i)) << "of " << count;
      }
      for (const char* const name : {"", "NAME", "NAME_", "NAME_1x", "NAME_99", "A", "z"}) {
        EXPECT_EQ(find(table, name), "(null)") << name << " of " << count;
      }
    }
  }
}

TEST(FindConfigEntry, UsesBinarySearchOnlyInASortedTable) {
  const Table table = makeTable();
  for (const char* const name : {"C", "B", "A"}) {
    EXPECT_EQ(setConfigEntry(table.get(), name, name), 0);
  }
  EXPECT_EQ(find(table, "C"), "C");
  table->sorted = 1;  // not true, so a binary search misses the name
  EXPECT_EQ(find(table, "C"), "(null)");
  sortConfig(table.get());  // trusts the flag
  EXPECT_EQ(namesOf(table), (std::vector<std::string>{"C", "B", "A"}));
  EXPECT_EQ(setConfigEntry(table.get(), "C", "new"), 0);  // walks any table
  EXPECT_EQ(table->count, 3U);
}

TEST(FreeConfig, AcceptsATableInAnyState) {
  freeConfig(nullptr);
  freeConfig(makeTable().release());  // never used

  Table table = makeTable();
  fill(table, 21);
  table->count = 3;  // entries beyond the count are freed as well
  freeConfig(table.release());
}

}  // namespace
}  // namespace addrtool::testing
