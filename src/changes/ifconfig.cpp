#include "changes/ifconfig.h"

#include <net/if.h>
#include <sys/wait.h>

#include <cstdlib>
#include <stdexcept>
#include <string>

#include "inventory/address_record.h"

namespace addrtool {
namespace {

void requireShortLabel(const std::string& label) {
  if (!kernelCanHoldLabel(label)) throw std::runtime_error(label + ": alias label too long.");
}

}  // namespace

void runIfconfig(const std::string& arguments) {
  const std::string commandLine = "/sbin/ifconfig " + arguments;
  // If system(3) itself fails, its -1 counts as exit status 255 (required).
  const int status = std::system(commandLine.c_str());
  if (WIFSIGNALED(status)) {
    throw std::runtime_error(commandLine + " killed with signal " +
                             std::to_string(WTERMSIG(status)));
  }
  if (WEXITSTATUS(status) != 0) {
    throw std::runtime_error(commandLine + " exited with non-zero status " +
                             std::to_string(WEXITSTATUS(status)));
  }
}

bool kernelCanHoldLabel(const std::string& label) {
  return label.size() < IFNAMSIZ;  // which counts the terminating NUL
}

void bringUpAlias(const std::string& label, const AddressRecord& record) {
  requireShortLabel(label);
  runIfconfig("'" + label + "' '" + record.address + "' netmask  '" + prefixToNetmask(record) +
              "' up");
}

void takeDownAlias(const std::string& label) {
  requireShortLabel(label);
  runIfconfig("'" + label + "' down");
}

void addIPv6ToRunningInterface(const std::string& interface, const AddressRecord& record) {
  runIfconfig(interface + " add " + formatIPv6Entry(record));
}

void removeIPv6FromRunningInterface(const std::string& interface, const AddressRecord& record) {
  runIfconfig(interface + " del " + formatIPv6Entry(record));
}

}  // namespace addrtool
