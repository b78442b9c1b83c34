#include "runtime/config_variables.h"

#include <gtest/gtest.h>

#include <tuple>
#include <vector>

namespace addrtool::testing {
namespace {

TEST(ConfigVariables, HaveTheirIndexNameAndDefault) {
  using enum ConfigVariable;
  const std::vector<std::tuple<ConfigVariable, std::size_t, const char*, const char*>> table{
      {MIN_POSSIBLE_KEL_CONF_VAR, 0, "_MIN_POSSIBLE_KEL_CONF_VAR_NAME",
       "_MIN_POSSIBLE_KEL_CONF_VAR_VALUE"},
      {VEXA_MAILNAMES_D, 1, "VEXA_MAILNAMES_D", "/var/qmail/mailnames"},
      {RBLSMTPD, 2, "RBLSMTPD", "/usr/sbin/rblsmtpd"},
      {CLIENT_PHP_BIN, 3, "CLIENT_PHP_BIN", "/usr/local/kel/bin/php-cli"},
      {LIB_CRYPTO_PATH, 4, "LIB_CRYPTO_PATH", "/lib/libcrypto.so"},
      {LIB_SSL_PATH, 5, "LIB_SSL_PATH", "/lib/libssl.so"},
      {AWSTATS_DOC_D, 6, "AWSTATS_DOC_D", "/var/www/html/awstats"},
      {AWSTATS_TOOLS_D, 7, "AWSTATS_TOOLS_D", "/usr/share/awstats"},
      {AWSTATS_BIN_D, 8, "AWSTATS_BIN_D", "/var/www/cgi-bin/awstats"},
      {AWSTATS_ETC_D, 9, "AWSTATS_ETC_D", "/etc/awstats"},
      {CATALINA_HOME, 10, "CATALINA_HOME", "/usr/share/tomcat5"},
      {MAILMAN_VAR_D, 11, "MAILMAN_VAR_D", "/var/lib/mailman"},
      {MAILMAN_ROOT_D, 12, "MAILMAN_ROOT_D", "/usr/lib/mailman"},
      {PGSQL_DATA_D, 13, "PGSQL_DATA_D", "/var/lib/pgsql/data"},
      {PGSQL_BIN_D, 14, "PGSQL_BIN_D", "/usr/bin"},
      {MYSQL_BIN_D, 15, "MYSQL_BIN_D", "/usr/bin"},
      {MYSQL_VAR_D, 16, "MYSQL_VAR_D", "/var/lib/mysql"},
      {WEB_STAT, 17, "WEB_STAT", "/usr/bin/webalizer"},
      {DUMP_D, 18, "DUMP_D", "/var/lib/kel/dumps"},
      {DUMP_TMP_D, 19, "DUMP_TMP_D", "/tmp"},
      {NAMED_RUN_ROOT_D, 20, "NAMED_RUN_ROOT_D", "/var/named/run-root"},
      {HTTPD_SERVICE, 21, "HTTPD_SERVICE", "httpd"},
      {HTTPD_LOG_D, 22, "HTTPD_LOG_D", "/var/log/httpd"},
      {HTTPD_INCLUDE_D, 23, "HTTPD_INCLUDE_D", "/etc/httpd/conf.d"},
      {HTTPD_CONF_D, 24, "HTTPD_CONF_D", "/etc/httpd/conf"},
      {HTTPD_VHOSTS_D, 25, "HTTPD_VHOSTS_D", "/var/www/vhosts"},
      {MYSQL_SOCKET, 26, "MYSQL_SOCKET", "/var/lib/mysql/mysql.sock"},
      {SA_MAX_MAIL_SIZE, 27, "SA_MAX_MAIL_SIZE", "256000"},
      {PRODUCT_ROOT_D, 28, "PRODUCT_ROOT_D", "/usr/local/kel"},
      {MAX_POSSIBLE_KEL_CONF_VAR, 29, "_MAX_POSSIBLE_KEL_CONF_VAR_NAME",
       "_MAX_POSSIBLE_KEL_CONF_VAR_VALUE"},
  };
  ASSERT_EQ(table.size(), configVariables.size());
  for (const auto& [variable, index, name, defaultValue] : table) {
    EXPECT_EQ(static_cast<std::size_t>(variable), index) << name;
    EXPECT_STREQ(configVariables.at(index).name, name);
    EXPECT_STREQ(configVariables.at(index).defaultValue, defaultValue) << name;
  }
}

}  // namespace
}  // namespace addrtool::testing
