// Fuzzes the operands of --add and --del, up to the command that would run. The lines of the input
// are the interface, the address, the netmask or prefix length, then the table of the kernel with a
// row "interface suffix address length" for each address. The suffix "-" means no alias.
//
// No command runs and no file changes: system(3) is replaced and fails before files would be
// written.
#include <array>
#include <stdexcept>

#include "changes/add_address.h"
#include "changes/delete_address.h"
#include "fuzzing.h"
#include "inventory/address_dump.h"
#include "inventory/kernel_addresses.h"

namespace addrtool {
namespace fuzz {
namespace {

// A status of system(3) and the end of the message about it.
struct Ending {
  int status = 0;
  const char* text = "";
};

constexpr std::array<Ending, 3> failures{{
    {256, " exited with non-zero status 1"},
    {9, " killed with signal 9"},
    {-1, " exited with non-zero status 255"},
}};

// What the program reads from and does to the machine.
struct World {
  bool isArmed = false;
  AddressDump dump;
  Ending ending;  // of every command
  std::vector<std::string> commands;
};

World world;

// The result of an action: the commands that it ran and the message of its exception, if any.
struct Outcome {
  std::vector<std::string> commands;
  std::optional<std::string> failure;

  bool operator==(const Outcome&) const = default;
};

Outcome outcomeOf(const std::function<void()>& action) {
  world.commands.clear();
  world.isArmed = true;
  const auto failure = failureOf(action);
  world.isArmed = false;
  return {world.commands, failure};
}

// --- the models: they record commands in the world, and throw what the program throws

[[noreturn]] void refuse(const std::string& message) {
  throw std::runtime_error(message);
}

void run(const std::string& arguments) {
  const std::string command = "/sbin/ifconfig " + arguments;
  world.commands.push_back(command);
  if (world.ending.status != 0) refuse(command + world.ending.text);
}

// The kernel holds labels of at most 15 bytes.
void requireShort(const std::string& label) {
  if (label.size() > 15) refuse(label + ": alias label too long.");
}

void bringUp(const std::string& label, const AddressRecord& record) {
  run("'" + label + "' '" + record.address + "' netmask  '" + modelNetmask(record.prefixLength) +
      "' up");
}

void changeIPv6(const std::string& interface, const std::string& verb,
                const AddressRecord& record) {
  run(interface + " " + verb + " " + record.address + "/" + std::to_string(record.prefixLength));
}

bool isIPv6(const std::string& address) {
  return address.find(':') != std::string::npos;
}

void modelAdd(const std::string& interface, const std::string& address, const std::string& third) {
  if (isIPv6(address)) {
    const auto length = modelUnsigned16(third).value;
    if (!length) refuse(third + ": cannot convert to int");
    requireShort(interface);
    return changeIPv6(interface, "add", {address, *length});
  }
  const auto mask = modelDottedQuad(third);
  if (!mask) refuse(third + ": cannot convert to netmask");
  const auto found = world.dump.find(interface);
  if (found == world.dump.end()) refuse(interface + ": no such network interface.");
  int number = 1;
  while (found->second.aliases.contains(std::to_string(number))) ++number;
  const std::string label = interface + ":" + std::to_string(number);
  if (label.size() > 15) refuse(interface + ": no free alias number.");
  bringUp(label, {address, modelPrefixLength(*mask)});
}

void modelDeleteIPv4(const std::string& address) {
  for (const auto& [interface, addresses] : world.dump) {
    for (const AddressRecord& record : addresses.primaryIPv4) {
      if (record.address == address) refuse(address + ": cannot delete main IP on interface");
    }
    for (const auto& [suffix, record] : addresses.aliases) {
      if (record.address != address) continue;
      const std::string label = interface + ":" + suffix;
      requireShort(label);
      return run("'" + label + "' down");
    }
  }
  refuse(address + ": not configured.");
}

void modelDeleteIPv6(const std::string& address) {
  for (const auto& [interface, addresses] : world.dump) {
    for (const AddressRecord& record : addresses.ipv6) {
      if (!modelSameIPv6(record.address, address)) continue;
      if (addresses.ipv6.size() > 1) return changeIPv6(interface, "del", record);
      refuse(address + ": cannot remove last address from " + interface);
    }
  }
  refuse(address + ": not configured");
}

// One command for each alias that has vanished.
void modelRestore(const std::string& interface, const AliasMap& before,
                  const std::string& deletedSuffix) {
  if (before.size() < 2) return;
  for (const auto& [suffix, record] : before) {
    if (suffix == deletedSuffix || world.dump[interface].aliases.contains(suffix)) continue;
    const std::string label = interface + ":" + suffix;
    requireShort(label);
    bringUp(label, record);
  }
}

// The addresses in the first lines after the operands.
AddressDump readDump(const std::vector<std::string>& lines, std::size_t count) {
  AddressDump dump;
  for (std::size_t i = 3; i < 3 + count; ++i) {
    const std::vector<std::string> fields = splitAt(lines[i], ' ');
    if (fields.size() != 4) continue;
    InterfaceAddresses& addresses = dump[fields[0]];
    const AddressRecord record{fields[2], modelUnsigned16(fields[3]).value.value_or(24)};
    if (isIPv6(record.address)) {
      addresses.ipv6.push_back(record);
    } else if (fields[1] == "-") {
      addresses.primaryIPv4.push_back(record);
    } else {
      addresses.aliases.insert({fields[1], record});
    }
  }
  return dump;
}

}  // namespace

int checkInput(Octets input) {
  const auto lines = splitAt(upToNul({input.begin(), input.end()}), '\n');
  if (lines.size() < 3) return -1;
  const std::string& interface = lines[0];
  const std::string& address = lines[1];
  const std::string& third = lines[2];
  const std::size_t rows = lines.size() - 3;
  world.dump = readDump(lines, rows);
  world.ending = failures.at(input.size() % failures.size());

  require(outcomeOf([&] { addAddress(interface, address, third); }) ==
              outcomeOf([&] { modelAdd(interface, address, third); }),
          "an addition runs its one command");
  const auto modelDelete = isIPv6(address) ? modelDeleteIPv6 : modelDeleteIPv4;
  require(outcomeOf([&] { deleteAddress(address); }) == outcomeOf([&] { modelDelete(address); }),
          "a deletion runs its one command");

  const AliasMap before = world.dump[interface].aliases;
  world.dump = readDump(lines, rows / 2);  // the other addresses have vanished
  world.ending = {};
  require(outcomeOf([&] { restoreAliases(interface, before, third); }) ==
              outcomeOf([&] { modelRestore(interface, before, third); }),
          "the aliases that vanished are brought back as they were");
  return 0;
}

}  // namespace fuzz

// Replaces the function that asks the kernel.
void readKernelAddresses(AddressDump& dump, bool includeHostScope) {
  fuzz::require(!includeHostScope, "addresses of host scope are never asked for");
  dump = fuzz::world.dump;
}

}  // namespace addrtool

// The linker redirects all calls here (--wrap), also those of libFuzzer.
extern "C" {

int __real_system(const char* command);
int __real_mkstemp(char* path);
int __real_unlink(const char* path);

int __wrap_system(const char* command) {
  using addrtool::fuzz::world;
  if (!world.isArmed) return __real_system(command);
  world.commands.emplace_back(command);
  return world.ending.status;
}

int __wrap_mkstemp(char* path) {
  addrtool::fuzz::require(!addrtool::fuzz::world.isArmed, "no file is written after a failure");
  return __real_mkstemp(path);
}

int __wrap_unlink(const char* path) {
  addrtool::fuzz::require(!addrtool::fuzz::world.isArmed, "no file is removed after a failure");
  return __real_unlink(path);
}

}  // extern "C"
