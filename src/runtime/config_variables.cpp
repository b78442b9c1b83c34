#include "runtime/config_variables.h"

#include <array>

namespace addrtool {

// NOLINTBEGIN(modernize-use-designated-initializers): each row is a name and its default
const std::array<ConfigVariableInfo, configVariableCount> configVariables =
    std::to_array<ConfigVariableInfo>({
        {"_MIN_POSSIBLE_KEL_CONF_VAR_NAME", "_MIN_POSSIBLE_KEL_CONF_VAR_VALUE"},
        {"VEXA_MAILNAMES_D", "/var/qmail/mailnames"},
        {"RBLSMTPD", "/usr/sbin/rblsmtpd"},
        {"CLIENT_PHP_BIN", "/usr/local/kel/bin/php-cli"},
        {"LIB_CRYPTO_PATH", "/lib/libcrypto.so"},
        {"LIB_SSL_PATH", "/lib/libssl.so"},
        {"AWSTATS_DOC_D", "/var/www/html/awstats"},
        {"AWSTATS_TOOLS_D", "/usr/share/awstats"},
        {"AWSTATS_BIN_D", "/var/www/cgi-bin/awstats"},
        {"AWSTATS_ETC_D", "/etc/awstats"},
        {"CATALINA_HOME", "/usr/share/tomcat5"},
        {"MAILMAN_VAR_D", "/var/lib/mailman"},
        {"MAILMAN_ROOT_D", "/usr/lib/mailman"},
        {"PGSQL_DATA_D", "/var/lib/pgsql/data"},
        {"PGSQL_BIN_D", "/usr/bin"},
        {"MYSQL_BIN_D", "/usr/bin"},
        {"MYSQL_VAR_D", "/var/lib/mysql"},
        {"WEB_STAT", "/usr/bin/webalizer"},
        {"DUMP_D", "/var/lib/kel/dumps"},
        {"DUMP_TMP_D", "/tmp"},
        {"NAMED_RUN_ROOT_D", "/var/named/run-root"},
        {"HTTPD_SERVICE", "httpd"},
        {"HTTPD_LOG_D", "/var/log/httpd"},
        {"HTTPD_INCLUDE_D", "/etc/httpd/conf.d"},
        {"HTTPD_CONF_D", "/etc/httpd/conf"},
        {"HTTPD_VHOSTS_D", "/var/www/vhosts"},
        {"MYSQL_SOCKET", "/var/lib/mysql/mysql.sock"},
        {"SA_MAX_MAIL_SIZE", "256000"},
        {"PRODUCT_ROOT_D", "/usr/local/kel"},
        {"_MAX_POSSIBLE_KEL_CONF_VAR_NAME", "_MAX_POSSIBLE_KEL_CONF_VAR_VALUE"},
    });
// NOLINTEND(modernize-use-designated-initializers)

}  // namespace addrtool
