// The panel's runtime configuration: /etc/kel/kel.conf, which is read when it is first needed, and
// compile-time defaults. C-style: no function here throws. The library owns the returned texts,
// which stay valid until the process ends. The program itself calls only loadRuntimeConfiguration.
#pragma once

#include "runtime/config_variables.h"

namespace addrtool {

/// Loads the configuration unless it is loaded already. Returns 0, or -1 on failure. A failed load
/// leaves nothing behind, so the next call or lookup tries again.
int loadRuntimeConfiguration();

/// Returns the value of the name in the file. Null if the name is not there or the file cannot be
/// loaded.
const char* lookupConfigFile(const char* name);

/// Returns the value of the variable in the file. Null if the variable is not there or its index is
/// outside of the table. A value is cached, a miss is not.
const char* getConfigValue(ConfigVariable variable);

/// Returns the value of the variable in the file, or its default if the variable is not there. Null
/// only if its index is outside of the table.
const char* getConfigValueOrDefault(ConfigVariable variable);

/// Returns the value or the default of the variable with this name. Logs an unknown name and
/// returns null; the name of the upper sentinel counts as unknown.
const char* getConfigValueByName(const char* name);

}  // namespace addrtool
