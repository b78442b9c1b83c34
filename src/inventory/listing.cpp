#include "inventory/listing.h"

#include <unistd.h>

#include <optional>
#include <set>
#include <stdexcept>
#include <string_view>

#include "inventory/address_inventory.h"

namespace addrtool {
namespace {

// One write for each line: the panel may read while the rest is still being printed.
void printLine(std::string line) {
  line += '\n';
  std::string_view rest = line;
  while (!rest.empty()) {
    const ssize_t written = write(STDOUT_FILENO, rest.data(), rest.size());
    if (written <= 0) return;
    rest.remove_prefix(static_cast<std::size_t>(written));
  }
}

std::string joinFields(const std::string& address, const std::string& netmask,
                       const std::string& interface, bool isPrimary) {
  std::string line;
  line.reserve(address.size() + netmask.size() + interface.size() + sizeof("   0\n"));
  line.append(address).append(1, ' ').append(netmask).append(1, ' ').append(interface);
  line.append(isPrimary ? " 1" : " 0");
  return line;
}

// The netmask text of the last prefix length: neighbours mostly share theirs.
class NetmaskCache {
 public:
  const std::string& netmaskOf(const AddressRecord& record) {
    if (prefixLength_ != record.prefixLength) {
      netmask_ = prefixToNetmask(record);
      prefixLength_ = record.prefixLength;
    }
    return netmask_;
  }

 private:
  std::optional<std::uint16_t> prefixLength_;
  std::string netmask_;
};

std::string baseInterfaceName(const std::string& name) {
  return name.substr(0, name.find(':'));
}

}  // namespace

void listAddresses() {
  NetmaskCache netmasks;
  for (const InterfaceRecord& interface : buildAddressInventory(false)) {
    bool isPrimary = true;
    for (const AddressRecord& record : interface.ipv4) {
      printLine(joinFields(record.address, netmasks.netmaskOf(record), interface.name, isPrimary));
      isPrimary = false;
    }
    for (const AddressRecord& record : interface.ipv6) {
      const std::string prefixLength = std::to_string(record.prefixLength);
      printLine(joinFields(record.address, prefixLength, interface.name, false));
    }
  }
}

std::string mainAddress() {
  for (const InterfaceRecord& interface : buildAddressInventory(false)) {
    if (!interface.ipv4.empty()) return interface.ipv4.front().address;
    if (!interface.ipv6.empty()) return interface.ipv6.front().address;
  }
  throw std::runtime_error("There are no network interfaces!");
}

void printMainAddress() {
  printLine(mainAddress());
}

void printInterfaceNames() {
  std::set<std::string> names;
  for (const InterfaceRecord& interface : buildAddressInventory(false)) {
    names.insert(baseInterfaceName(interface.name));
  }
  for (const std::string& name : names) printLine(name);
}

}  // namespace addrtool
