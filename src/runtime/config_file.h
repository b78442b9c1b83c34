// Reads a configuration file: one definition to a line, a name, white space and a value. Blank
// lines and what follows a # are comments. What cannot be read as a definition is logged and
// skipped. Plain C style: nothing here raises.
#pragma once

#include "runtime/config_table.h"

namespace addrtool {

/// Adds the definitions of the file to the table and sorts it; the last definition of a name wins.
/// Returns 0, or -1 with errno set when the file cannot be opened or read to its end or memory runs
/// out; the table then holds what was read so far.
///
/// White space at the end of a value is cut in an old way that files rely on: of an odd number of
/// characters, the newline included, the last one goes; an even number stays.
int readConfigFile(const char* path, RuntimeConfiguration* table);

}  // namespace addrtool
