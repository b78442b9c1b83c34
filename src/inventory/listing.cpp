#include "inventory/listing.h"

#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <set>
#include <stdexcept>
#include <string>
#include <string_view>

#include "inventory/address_inventory.h"
#include "inventory/address_record.h"

namespace addrtool {
namespace {

// Whether a write that returned -1 should be retried. When standard output is non-blocking and
// full, this first waits until it takes more.
bool canRetryWrite() {
  if (errno == EAGAIN) {
    pollfd output{.fd = STDOUT_FILENO, .events = POLLOUT, .revents = 0};
    if (poll(&output, 1, -1) != -1) return true;
  }
  return errno == EINTR;
}

// Writes the line, with its newline, at once, so that the panel can read it before the rest is
// printed. Returns false on a write error. The caller must then stop, so that no line is missing
// between two others.
bool printLine(std::string_view line) {
  while (!line.empty()) {
    const ssize_t written = write(STDOUT_FILENO, line.data(), line.size());
    if (written > 0) {
      line.remove_prefix(static_cast<std::size_t>(written));
    } else if (written != -1 || !canRetryWrite()) {
      return false;
    }
  }
  return true;
}

// Replaces the text of the line. The caller reuses the line, which saves allocations.
void formatLine(std::string& line, const std::string& address, const std::string& netmask,
                const std::string& interface, bool isPrimary) {
  line.assign(address).append(1, ' ').append(netmask).append(1, ' ').append(interface);
  line.append(isPrimary ? " 1\n" : " 0\n");
}

// Keeps the last netmask text, because neighbouring addresses usually share their prefix length.
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

bool printAddresses(const InterfaceRecord& interface, NetmaskCache& netmasks) {
  std::string line;
  bool isPrimary = true;
  for (const AddressRecord& record : interface.ipv4) {
    formatLine(line, record.address, netmasks.netmaskOf(record), interface.name, isPrimary);
    if (!printLine(line)) return false;
    isPrimary = false;
  }
  return std::ranges::all_of(interface.ipv6, [&](const AddressRecord& record) {
    const std::string prefixLength = std::to_string(record.prefixLength);
    formatLine(line, record.address, prefixLength, interface.name, false);
    return printLine(line);
  });
}

std::string baseInterfaceName(const std::string& name) {
  return name.substr(0, name.find(':'));
}

}  // namespace

void listAddresses() {
  NetmaskCache netmasks;
  for (const InterfaceRecord& interface : buildAddressInventory(false)) {
    if (!printAddresses(interface, netmasks)) return;
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
  printLine(mainAddress() + '\n');
}

void printInterfaceNames() {
  std::set<std::string> names;
  for (const InterfaceRecord& interface : buildAddressInventory(false)) {
    names.insert(baseInterfaceName(interface.name));
  }
  for (const std::string& name : names) {
    if (!printLine(name + '\n')) return;
  }
}

}  // namespace addrtool
