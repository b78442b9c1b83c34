// A table of names and values, each name once, which holds the content of a configuration file.
// C-style: results are 0, or -1 with errno set. No function here throws. The program itself only
// loads a table: it never calls findConfigEntry.
#pragma once

#include <syslog.h>

#include <cstdint>

namespace addrtool {

/// The priority of all messages about a file being read. The console sink compares the whole
/// number, 12, with its threshold, 6. So it does not show these messages by default.
inline constexpr int fileReaderPriority = LOG_USER | LOG_WARNING;

struct ConfigEntry {
  char* name;   ///< owned
  char* value;  ///< owned
};

/// A zero-initialized table is empty. Slots beyond `count` must be null, as freeConfig frees all.
struct RuntimeConfiguration {
  ConfigEntry* entries;    ///< owned; null until first use
  std::uint32_t capacity;  ///< slots allocated
  std::uint32_t count;     ///< slots in use
  int sorted;              ///< 1 while the entries are in ascending strcmp order of names
};

/// Makes room for one more entry: 20 slots at first, then twice as many each time. Fails with errno
/// ENOMEM, and logs that unless the first allocation failed.
int growConfig(RuntimeConfiguration* table);

/// Stores copies of both texts. Replaces the value of a known name, appends a new name. On failure
/// (ENOMEM, logged) the table is unchanged.
int setConfigEntry(RuntimeConfiguration* table, const char* name, const char* value);

/// Sorts the entries by name unless they are sorted already.
void sortConfig(RuntimeConfiguration* table);

/// Returns the value of the name, which the table owns, or null.
const char* findConfigEntry(const RuntimeConfiguration* table, const char* name);

/// Frees the entries, the array and the table itself, which must come from malloc(3). Ignores null.
void freeConfig(RuntimeConfiguration* table);

}  // namespace addrtool
