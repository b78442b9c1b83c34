#include "runtime/config_table.h"

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <span>

#include "runtime/logging.h"

namespace addrtool {
namespace {

constexpr std::uint32_t initialCapacity = 20;
constexpr std::uint32_t largestCapacity = 0x1FFFFFFE;

int failForMemory(const char* what) {
  logMessage(fileReaderPriority, "%s: %s", what, std::strerror(ENOMEM));
  errno = ENOMEM;
  return -1;
}

int allocateFirstSlots(RuntimeConfiguration* table) {
  table->entries = static_cast<ConfigEntry*>(std::calloc(initialCapacity, sizeof(ConfigEntry)));
  if (table->entries == nullptr) {
    table->capacity = 0;
    errno = ENOMEM;
    return -1;
  }
  table->capacity = initialCapacity;
  table->count = 0;
  table->sorted = 1;
  return 0;
}

// Returns twice the capacity. If that overflows, returns count + 20. Returns 0 if the result is too
// large. The table is full, so a result below its count has overflowed.
std::uint32_t nextCapacity(const RuntimeConfiguration& table) {
  const std::uint32_t doubled = table.capacity * 2;
  const std::uint32_t wanted = doubled < table.count ? table.count + initialCapacity : doubled;
  return wanted < table.count || wanted > largestCapacity ? 0 : wanted;
}

std::span<ConfigEntry> entriesOf(const RuntimeConfiguration& table) {
  return {table.entries, table.count};
}

bool precedes(const char* left, const char* right) {
  return std::strcmp(left, right) < 0;
}

ConfigEntry* findLinearly(const RuntimeConfiguration& table, const char* name) {
  for (ConfigEntry& entry : entriesOf(table)) {
    if (std::strcmp(entry.name, name) == 0) return &entry;
  }
  return nullptr;
}

ConfigEntry* findSorted(const RuntimeConfiguration& table, const char* name) {
  const auto entries = entriesOf(table);
  const auto found = std::ranges::lower_bound(entries, name, precedes, &ConfigEntry::name);
  return found != entries.end() && std::strcmp(found->name, name) == 0 ? &*found : nullptr;
}

}  // namespace

int growConfig(RuntimeConfiguration* table) {
  if (table->entries == nullptr) return allocateFirstSlots(table);
  if (table->count < table->capacity) return 0;

  const std::uint32_t capacity = nextCapacity(*table);
  void* grown =
      capacity == 0 ? nullptr : std::realloc(table->entries, capacity * sizeof(ConfigEntry));
  if (grown == nullptr) return failForMemory("Unable to read configuration");
  table->entries = static_cast<ConfigEntry*>(grown);
  table->capacity = capacity;
  std::fill(table->entries + table->count, table->entries + capacity, ConfigEntry{});
  return 0;
}

int setConfigEntry(RuntimeConfiguration* table, const char* name, const char* value) {
  if (growConfig(table) != 0) return -1;
  char* nameCopy = strdup(name);
  char* valueCopy = strdup(value);
  if (nameCopy == nullptr || valueCopy == nullptr) {
    std::free(nameCopy);
    std::free(valueCopy);
    return failForMemory("Unable to form configuration");
  }
  if (ConfigEntry* known = findLinearly(*table, name)) {
    std::free(nameCopy);
    std::free(known->value);
    known->value = valueCopy;
  } else {
    table->entries[table->count++] = {.name = nameCopy, .value = valueCopy};
    table->sorted = 0;
  }
  return 0;
}

void sortConfig(RuntimeConfiguration* table) {
  if (table->sorted != 0) return;
  std::ranges::sort(entriesOf(*table), precedes, &ConfigEntry::name);
  table->sorted = 1;
}

const char* findConfigEntry(const RuntimeConfiguration* table, const char* name) {
  const ConfigEntry* entry =
      table->sorted != 0 ? findSorted(*table, name) : findLinearly(*table, name);
  return entry == nullptr ? nullptr : entry->value;
}

void freeConfig(RuntimeConfiguration* table) {
  if (table == nullptr) return;
  for (const ConfigEntry& entry : std::span(table->entries, table->capacity)) {
    std::free(entry.name);
    std::free(entry.value);
  }
  std::free(table->entries);
  std::free(table);
}

}  // namespace addrtool
