#include "cli/usage.h"

#include <cstdio>
#include <cstdlib>
#include <string_view>

namespace addrtool {

void printUsage() {
  // Leaves out --main on purpose: it only exists for old callers.
  constexpr std::string_view text =
      R"(Usage: addrtool [OPTIONS]...

  -l,  --list                                  list all addresses in format: "<ipaddr> <netmask> <interface> <is-primary-ip>\n ..."
  -a,  --add <interface> <ipaddress> <netmask> add IP on <interface>
  -d,  --del <ipaddress>                       delete IP
  -h,  --help                                  display this help and exit
  -v,  --qv-assigned-ip <ipaddress>            determine if <ipaddress> was assigned to this VE
)";
  std::fwrite(text.data(), 1, text.size(), stderr);
  std::exit(exitUsage);
}

}  // namespace addrtool
