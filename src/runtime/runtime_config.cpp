#include "runtime/runtime_config.h"

#include <syslog.h>

#include <array>
#include <cstdlib>
#include <cstring>

#include "runtime/config_file.h"
#include "runtime/config_table.h"
#include "runtime/config_variables.h"
#include "runtime/logging.h"

namespace addrtool {
namespace {

constexpr const char* configPath = "/etc/kel/kel.conf";

RuntimeConfiguration* loaded = nullptr;
std::array<const char*, configVariableCount> foundValues{};

std::size_t indexOf(ConfigVariable variable) {
  return static_cast<std::size_t>(variable);
}

// Checked first, so that no at() below can throw.
bool isInTable(ConfigVariable variable) {
  return indexOf(variable) < configVariables.size();
}

}  // namespace

int loadRuntimeConfiguration() {
  if (loaded != nullptr) return 0;
  auto* table = static_cast<RuntimeConfiguration*>(std::calloc(1, sizeof(RuntimeConfiguration)));
  if (table == nullptr) {
    logMessage(LOG_ERR, "Not enough memory to allocate Vexa runtime configuration structure");
    return -1;
  }
  if (readConfigFile(configPath, table) != 0) {
    freeConfig(table);
    return -1;
  }
  loaded = table;
  return 0;
}

const char* lookupConfigFile(const char* name) {
  return loadRuntimeConfiguration() == 0 ? findConfigEntry(loaded, name) : nullptr;
}

const char* getConfigValue(ConfigVariable variable) {
  if (!isInTable(variable)) return nullptr;
  const char*& value = foundValues.at(indexOf(variable));
  if (value == nullptr) value = lookupConfigFile(configVariables.at(indexOf(variable)).name);
  return value;
}

const char* getConfigValueOrDefault(ConfigVariable variable) {
  if (!isInTable(variable)) return nullptr;
  const char* value = getConfigValue(variable);
  return value != nullptr ? value : configVariables.at(indexOf(variable)).defaultValue;
}

const char* getConfigValueByName(const char* name) {
  // The last variable, the upper sentinel, cannot be looked up by name (required).
  for (std::size_t i = 0; i < indexOf(ConfigVariable::MAX_POSSIBLE_KEL_CONF_VAR); ++i) {
    if (std::strcmp(configVariables.at(i).name, name) == 0) {
      return getConfigValueOrDefault(static_cast<ConfigVariable>(i));
    }
  }
  logMessage(LOG_ERR, "variable '%s' was found neither in %s, nor in compile-time defaults", name,
             configPath);
  return nullptr;
}

}  // namespace addrtool
