#include "runtime/config_table.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstdlib>
#include <map>
#include <memory>
#include <tuple>

#include "support/failing_call.h"
#include "support/log_recorder.h"

namespace addrtool::testing {
namespace {

using EntryNames = std::vector<std::string>;

const std::vector<LoggedMessage> cannotGrow{
    {12, "Unable to read configuration: Cannot allocate memory"}};
const std::vector<LoggedMessage> cannotStore{
    {12, "Unable to form configuration: Cannot allocate memory"}};

struct ConfigTable : ::testing::Test {
  ConfigTable() { makeEmpty(); }

  void makeEmpty() {
    table.reset(static_cast<RuntimeConfiguration*>(std::calloc(1, sizeof(RuntimeConfiguration))));
  }

  int set(const std::string& name, const std::string& value) const {
    return setConfigEntry(table.get(), name.c_str(), value.c_str());
  }

  // Defines "NAME_0" as "0" and so on, until the table has that many entries.
  void fill(unsigned count) const {
    for (unsigned i = table->count; i < count; ++i) {
      ASSERT_EQ(set("NAME_" + std::to_string(i), std::to_string(i)), 0);
    }
  }

  std::string find(const std::string& name) const {
    const char* const value = findConfigEntry(table.get(), name.c_str());
    return value == nullptr ? "(null)" : value;
  }

  EntryNames names() const {
    EntryNames result;
    for (std::uint32_t i = 0; i < table->count; ++i) result.emplace_back(table->entries[i].name);
    return result;
  }

  // Expects that capacity, with every slot beyond the entries empty.
  void expectCapacity(std::uint32_t capacity) const {
    ASSERT_EQ(table->capacity, capacity) << "for " << table->count << " entries";
    for (std::uint32_t i = table->count; i < capacity; ++i) {
      EXPECT_EQ(table->entries[i].name, nullptr) << "in slot " << i;
      EXPECT_EQ(table->entries[i].value, nullptr) << "in slot " << i;
    }
  }

  LogRecorder log;
  std::unique_ptr<RuntimeConfiguration, void (*)(RuntimeConfiguration*)> table{nullptr, freeConfig};
};

TEST_F(ConfigTable, FirstUseAllocatesTwentySlots) {
  table->count = 5;
  table->capacity = 7;
  EXPECT_EQ(growConfig(table.get()), 0);
  EXPECT_NE(table->entries, nullptr);
  EXPECT_EQ(table->count, 0U);
  EXPECT_EQ(table->sorted, 1);
  expectCapacity(20);
}

TEST_F(ConfigTable, OutOfMemoryFailsSilentlyAtFirstUseAndIsLoggedLater) {
  table->capacity = 7;
  for (const unsigned count : {0U, 20U}) {
    fill(count);
    for (const bool isStore : {false, true}) {
      const FailingAllocations failing(1);
      errno = 0;
      EXPECT_EQ(isStore ? set("A", "1") : growConfig(table.get()), -1);
      EXPECT_EQ(errno, ENOMEM);
      EXPECT_EQ(LogRecorder::take(), count == 0 ? std::vector<LoggedMessage>{} : cannotGrow);
      EXPECT_EQ(table->entries == nullptr, count == 0);
      EXPECT_EQ(table->capacity, count);
      EXPECT_EQ(table->count, count);
    }
  }
}

TEST_F(ConfigTable, DoesNotGrowWhileItHasAFreeSlot) {
  fill(19);
  const FailingAllocations failing(1);
  EXPECT_EQ(growConfig(table.get()), 0);
  EXPECT_EQ(table->capacity, 20U);
  EXPECT_EQ(FailingAllocations::calls(), 0);
}

TEST_F(ConfigTable, DoublesWhenItIsFullAndClearsTheNewSlots) {
  for (const auto& [count, capacity] : std::map<unsigned, unsigned>{
           {1, 20}, {20, 20}, {21, 40}, {40, 40}, {41, 80}, {80, 80}, {81, 160}}) {
    fill(count);
    EXPECT_EQ(table->count, count);
    expectCapacity(capacity);
  }
}

TEST_F(ConfigTable, FailsAboveTheLargestCapacityWithoutAllocating) {
  // These tables only claim to be this full. Every allocation fails.
  const std::vector<std::tuple<std::uint32_t, std::uint32_t, int>> capacityCountAllocations{
      {0x0FFFFFFF, 0x0FFFFFFF, 1}, {0x10000000, 0x10000000, 0}, {0x1FFFFFFE, 0x1FFFFFFE, 0},
      {0x7FFFFFFE, 0x7FFFFFFE, 0}, {0x7FFFFFFF, 0x7FFFFFFF, 0}, {0x80000000, 0x80000000, 0},
      {0xFFFFFFEB, 0xFFFFFFEB, 0}, {0xFFFFFFEC, 0xFFFFFFEC, 0}, {0xFFFFFFFF, 0xFFFFFFFF, 0},
      {0, 0x1FFFFFEA, 1},          {0, 0x1FFFFFEB, 0},          {0, 0, 0}};
  for (const auto& [capacity, count, allocations] : capacityCountAllocations) {
    ConfigEntry slot{};
    RuntimeConfiguration full{&slot, capacity, count, 0};
    const FailingAllocations failing(1);
    errno = 0;
    EXPECT_EQ(growConfig(&full), -1);
    EXPECT_EQ(errno, ENOMEM);
    EXPECT_EQ(FailingAllocations::calls(), allocations) << "for " << count << " entries";
    EXPECT_EQ(LogRecorder::take(), cannotGrow);
  }
}

TEST_F(ConfigTable, GrowsToTheEntriesPlusTwentyIfDoublingIsTooLittle) {
  fill(5);
  table->capacity = 2;
  EXPECT_EQ(growConfig(table.get()), 0);
  expectCapacity(25);

  fill(20);
  table->capacity = 10;  // not too little: 2 * 10 is not less than 20, so the table is still full
  EXPECT_EQ(growConfig(table.get()), 0);
  expectCapacity(20);
}

TEST_F(ConfigTable, StoresCopies) {
  std::string name = "NAME";
  std::string value = "value";
  EXPECT_EQ(setConfigEntry(table.get(), name.c_str(), value.c_str()), 0);
  name[0] = value[0] = 'x';
  EXPECT_EQ(find("NAME"), "value");
  EXPECT_EQ(find("xAME"), "(null)");
}

TEST_F(ConfigTable, TheLastDefinitionOfANameWins) {
  for (const auto& [name, value] : {std::pair("NAME", "1"),
                                    {"NAM", "2"},
                                    {"NAME", "3"},
                                    {"NAM", ""},
                                    {"NAME", "4"},
                                    {"name", "5"}}) {
    EXPECT_EQ(set(name, value), 0);
  }
  EXPECT_EQ(names(), (EntryNames{"NAME", "NAM", "name"}));
  EXPECT_EQ(find("NAME"), "4");
  EXPECT_EQ(find("NAM"), "");
  EXPECT_EQ(find("name"), "5");
}

TEST_F(ConfigTable, OnlyANewNameClearsTheSortedFlag) {
  EXPECT_EQ(set("A", "1"), 0);
  EXPECT_EQ(table->sorted, 0);
  sortConfig(table.get());
  EXPECT_EQ(set("A", "2"), 0);
  EXPECT_EQ(table->sorted, 1);
  EXPECT_EQ(set("B", "3"), 0);
  EXPECT_EQ(table->sorted, 0);
}

TEST_F(ConfigTable, GrowsWhenItIsFullEvenForAKnownName) {
  fill(20);
  EXPECT_EQ(set("NAME_3", "new"), 0);
  EXPECT_EQ(table->count, 20U);
  EXPECT_EQ(table->capacity, 40U);
}

TEST_F(ConfigTable, OutOfMemoryForACopyChangesNothing) {
  EXPECT_EQ(set("A", "1"), 0);
  for (const char* const name : {"A", "B"}) {
    for (const auto& [first, last] : {std::pair(1, 1), {2, 2}, {1, 2}}) {
      const FailingAllocations failing(first, last);
      errno = 0;
      EXPECT_EQ(set(name, "2"), -1);
      EXPECT_EQ(errno, ENOMEM);
      EXPECT_EQ(LogRecorder::take(), cannotStore);
      EXPECT_EQ(names(), EntryNames{"A"});
      EXPECT_EQ(find("A"), "1");
    }
  }
}

TEST_F(ConfigTable, IsSortedByTheBytesOfTheNames) {
  for (const char* const name : {"b", "B", "a_", "aB", "a", "9", "_", "\xe4", "a1"}) {
    EXPECT_EQ(set(name, name), 0);
  }
  sortConfig(table.get());
  EXPECT_EQ(table->sorted, 1);
  EXPECT_EQ(names(), (EntryNames{"9", "B", "_", "a", "a1", "aB", "a_", "b", "\xe4"}));
  EXPECT_EQ(find("a1"), "a1");

  makeEmpty();
  sortConfig(table.get());
  EXPECT_EQ(table->sorted, 1);
}

TEST_F(ConfigTable, FindsEveryNameAndNoOther) {
  for (const unsigned count : {0U, 1U, 2U, 3U, 25U, 41U}) {
    makeEmpty();
    fill(count);
    for (const bool sorted : {false, true}) {
      if (sorted) sortConfig(table.get());
      for (unsigned i = 0; i < count; ++i) {
        EXPECT_EQ(find("NAME_" + std::to_string(i)), std::to_string(i)) << "of " << count;
      }
      for (const char* const name : {"", "NAME", "NAME_", "NAME_1x", "NAME_99", "A", "z"}) {
        EXPECT_EQ(find(name), "(null)") << name << " of " << count;
      }
    }
  }
}

TEST_F(ConfigTable, IsSearchedByHalvesOnlyIfItIsSorted) {
  for (const char* const name : {"C", "B", "A"}) EXPECT_EQ(set(name, name), 0);
  EXPECT_EQ(find("C"), "C");
  table->sorted = 1;  // not true, so a binary search misses the name
  EXPECT_EQ(find("C"), "(null)");
  sortConfig(table.get());  // trusts the flag
  EXPECT_EQ(names(), (EntryNames{"C", "B", "A"}));
  EXPECT_EQ(set("C", "new"), 0);  // walks any table
  EXPECT_EQ(table->count, 3U);
}

TEST_F(ConfigTable, CanBeFreedInAnyState) {
  freeConfig(nullptr);
  makeEmpty();  // frees one that was never used
  fill(21);
  table->count = 3;  // entries beyond the count are freed as well
}

}  // namespace
}  // namespace addrtool::testing
