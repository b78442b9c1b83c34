// The table that a configuration file is read into: names and values, each name once. Plain C
// style: results are 0, or -1 with errno set; nothing here raises.
#pragma once

#include <syslog.h>

#include <cstdint>

namespace addrtool {

/// What goes wrong while a file is read is logged at this priority: a warning of the user facility,
/// so the console does not show it unless the threshold is raised above all plain levels.
inline constexpr int fileReaderPriority = LOG_USER | LOG_WARNING;

struct ConfigEntry {
  char* name;   ///< owned
  char* value;  ///< owned
};

/// All zero is an empty table. Slots beyond `count` are null, which freeConfig relies on.
struct RuntimeConfiguration {
  ConfigEntry* entries;    ///< owned; null until first use
  std::uint32_t capacity;  ///< slots allocated
  std::uint32_t count;     ///< slots in use
  int sorted;              ///< 1 while the entries are in ascending strcmp order of names
};

/// Sees to it that one more entry fits: 20 slots at first, then twice as many each time. Fails
/// with errno ENOMEM, after logging unless it was the first allocation that failed.
int growConfig(RuntimeConfiguration* table);

/// Stores copies of both texts. A name that is there already gets the new value, a new name is
/// appended. On failure (ENOMEM, logged) the table holds what it held.
int setConfigEntry(RuntimeConfiguration* table, const char* name, const char* value);

/// Sorts the entries by name if they are not sorted.
void sortConfig(RuntimeConfiguration* table);

/// The value stored for the name, owned by the table, or null.
const char* findConfigEntry(const RuntimeConfiguration* table, const char* name);

/// Frees all slots, the array and the table itself, which came from malloc(3). Null is ignored.
void freeConfig(RuntimeConfiguration* table);

}  // namespace addrtool
