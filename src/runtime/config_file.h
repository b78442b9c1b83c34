// Reads a configuration file. Each line defines a variable: a name, white space and a value. A #
// starts a comment. A line that is not a definition is logged and skipped. C-style: no function
// here throws.
#pragma once

#include "runtime/config_table.h"

namespace addrtool {

/// Adds the definitions in the file to the table and sorts it. The last definition of a name wins.
/// Returns 0. Returns -1 with errno set when the file cannot be opened or read, or when memory runs
/// out; the table then holds the definitions read so far.
///
/// Trailing white space, which includes the newline, mostly stays in the value (required). If it
/// has an odd number of characters, the last one is cut. If it has an even number, nothing is cut.
int readConfigFile(const char* path, RuntimeConfiguration* table);

}  // namespace addrtool
