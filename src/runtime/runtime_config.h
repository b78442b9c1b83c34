// The panel's shared runtime configuration: /etc/kel/kel.conf, read once in the life of the process
// when it is first needed, with compile-time defaults for what it leaves out. Plain C style:
// nothing here raises. All texts handed out belong to the library and stay valid to the end.
#pragma once

#include "runtime/config_variables.h"

namespace addrtool {

/// Returns 0 when the configuration is loaded, now or earlier, else -1. Nothing of a failed load is
/// kept, so the next call or lookup tries again.
int loadRuntimeConfiguration();

/// The value the file gives to the name, or null; null also when the file cannot be loaded.
const char* lookupConfigFile(const char* name);

/// The value the file gives to the variable, or null. A value found is remembered, a miss is not.
/// Null too for an index outside of the table.
const char* getConfigValue(ConfigVariable variable);

/// The same, or else the default of the variable. Null only for an index outside of the table.
const char* getConfigValueOrDefault(ConfigVariable variable);

/// The same by name. A name that is no variable's, or the upper sentinel's, is logged and gives
/// null.
const char* getConfigValueByName(const char* name);

}  // namespace addrtool
