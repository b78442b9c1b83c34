// The variables of the panel's runtime configuration file, each with an index, a name and a default
// value. The first and the last one are sentinels. The program itself never asks for a variable.
#pragma once

#include <array>
#include <cstddef>

namespace addrtool {

/// The index in `configVariables`. The names are those of the configuration file.
enum class ConfigVariable : unsigned char {
  MIN_POSSIBLE_KEL_CONF_VAR,
  VEXA_MAILNAMES_D,
  RBLSMTPD,
  CLIENT_PHP_BIN,
  LIB_CRYPTO_PATH,
  LIB_SSL_PATH,
  AWSTATS_DOC_D,
  AWSTATS_TOOLS_D,
  AWSTATS_BIN_D,
  AWSTATS_ETC_D,
  CATALINA_HOME,
  MAILMAN_VAR_D,
  MAILMAN_ROOT_D,
  PGSQL_DATA_D,
  PGSQL_BIN_D,
  MYSQL_BIN_D,
  MYSQL_VAR_D,
  WEB_STAT,
  DUMP_D,
  DUMP_TMP_D,
  NAMED_RUN_ROOT_D,
  HTTPD_SERVICE,
  HTTPD_LOG_D,
  HTTPD_INCLUDE_D,
  HTTPD_CONF_D,
  HTTPD_VHOSTS_D,
  MYSQL_SOCKET,
  SA_MAX_MAIL_SIZE,
  PRODUCT_ROOT_D,
  MAX_POSSIBLE_KEL_CONF_VAR,
};

inline constexpr std::size_t configVariableCount =
    static_cast<std::size_t>(ConfigVariable::MAX_POSSIBLE_KEL_CONF_VAR) + 1;

/// The name and the default of one variable. Numbers are texts too.
struct ConfigVariableInfo {
  const char* name;
  const char* defaultValue;
};

/// In the order of ConfigVariable.
extern const std::array<ConfigVariableInfo, configVariableCount> configVariables;

}  // namespace addrtool
