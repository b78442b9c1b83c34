// Fuzzes the operands of --add and --del, up to the command that would run. The lines of the input
// are the interface, the address, the netmask or prefix length, then the table of the kernel with a
// row "interface suffix address length" for each address. The suffix "-" means no alias.
//
// No command runs and no file changes: system(3) is replaced and fails before files would be
// written.
#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "changes/add_address.h"
#include "changes/delete_address.h"
#include "inventory/address_dump.h"
#include "inventory/kernel_addresses.h"
#include "require.h"
#include "text_models.h"

namespace addrtool {
namespace fuzz {
namespace {

// What the program reads from and does to the machine.
struct World {
  bool isArmed = false;
  AddressDump dump;
  int status = 0;
  std::vector<std::string> commands;
};

World world;

// The result of an action: the commands that it ran and the message of its exception, if any.
struct Outcome {
  std::vector<std::string> commands;
  std::string failure;

  bool operator==(const Outcome&) const = default;
};

// A status of system(3) and the end of the message about it.
struct Ending {
  int status;
  const char* text;
};

constexpr std::array<Ending, 3> endings{{
    {256, " exited with non-zero status 1"},
    {9, " killed with signal 9"},
    {-1, " exited with non-zero status 255"},
}};

Outcome run(const std::function<void()>& action) {
  world.commands.clear();
  world.isArmed = true;
  Outcome outcome;
  try {
    action();
  } catch (const std::runtime_error& failure) {
    outcome.failure = failure.what();
  }
  world.isArmed = false;
  outcome.commands = world.commands;
  return outcome;
}

Outcome ran(const std::string& command, const Ending& ending) {
  return {{command}, command + ending.text};
}

Outcome refused(const std::string& message) {
  return {{}, message};
}

std::string bringUpCommand(const std::string& label, const AddressRecord& record) {
  const std::string netmask = modelNetmask(record.prefixLength);
  return "/sbin/ifconfig '" + label + "' '" + record.address + "' netmask  '" + netmask + "' up";
}

std::string ipv6Command(const std::string& interface, const std::string& verb,
                        const AddressRecord& record) {
  return "/sbin/ifconfig " + interface + " " + verb + " " + record.address + "/" +
         std::to_string(record.prefixLength);
}

std::string lowestFree(const AliasMap& aliases) {
  int number = 1;
  while (aliases.contains(std::to_string(number))) ++number;
  return std::to_string(number);
}

// The kernel holds labels of at most 15 bytes.
bool isTooLong(const std::string& label) {
  return label.size() > 15;
}

Outcome modelAdd(const std::string& interface, const std::string& address, const std::string& third,
                 const Ending& ending) {
  if (address.find(':') != std::string::npos) {
    const auto number = modelUnsigned16(third).value;
    if (!number) return refused(third + ": cannot convert to int");
    if (isTooLong(interface)) return refused(interface + ": alias label too long.");
    return ran(ipv6Command(interface, "add", {address, *number}), ending);
  }
  const auto mask = modelDottedQuad(third);
  if (!mask) return refused(third + ": cannot convert to netmask");
  const auto found = world.dump.find(interface);
  if (found == world.dump.end()) return refused(interface + ": no such network interface.");
  const std::string label = interface + ":" + lowestFree(found->second.aliases);
  if (isTooLong(label)) return refused(interface + ": no free alias number.");
  return ran(bringUpCommand(label, {address, modelPrefixLength(*mask)}), ending);
}

// Whether the command is none for an alias, or the word that the shell takes as its label is short.
bool namesShortLabel(const std::string& command) {
  if (!command.ends_with("' up") && !command.ends_with("' down")) return true;
  const std::size_t start = std::string_view("/sbin/ifconfig '").size();
  return !isTooLong(command.substr(start, command.find('\'', start) - start));
}

Outcome modelTakeDown(const std::string& label, const Ending& ending) {
  if (isTooLong(label)) return refused(label + ": alias label too long.");
  return ran("/sbin/ifconfig '" + label + "' down", ending);
}

Outcome modelDeleteIPv4(const std::string& address, const Ending& ending) {
  for (const auto& [interface, addresses] : world.dump) {
    for (const AddressRecord& record : addresses.primaryIPv4) {
      if (record.address == address) {
        return refused(address + ": cannot delete main IP on interface");
      }
    }
    for (const auto& [suffix, record] : addresses.aliases) {
      if (record.address == address) return modelTakeDown(interface + ":" + suffix, ending);
    }
  }
  return refused(address + ": not configured.");
}

Outcome modelDeleteIPv6(const std::string& address, const Ending& ending) {
  for (const auto& [interface, addresses] : world.dump) {
    for (const AddressRecord& record : addresses.ipv6) {
      if (!modelSameIPv6(record.address, address)) continue;
      if (addresses.ipv6.size() == 1) {
        return refused(address + ": cannot remove last address from " + interface);
      }
      return ran(ipv6Command(interface, "del", record), ending);
    }
  }
  return refused(address + ": not configured");
}

// One command for each alias that has vanished.
Outcome modelRestore(const std::string& interface, const AliasMap& before, const AliasMap& after,
                     const std::string& deletedSuffix) {
  Outcome outcome;
  if (before.size() < 2) return outcome;
  for (const auto& [suffix, record] : before) {
    if (suffix == deletedSuffix || after.contains(suffix)) continue;
    const std::string label = interface + ":" + suffix;
    if (isTooLong(label)) {
      outcome.failure = label + ": alias label too long.";
      return outcome;
    }
    outcome.commands.push_back(bringUpCommand(label, record));
  }
  return outcome;
}

// The lines after the operands, up to that one.
AddressDump readDump(const std::vector<std::string>& lines, std::size_t end) {
  AddressDump dump;
  for (std::size_t i = 3; i < end; ++i) {
    const std::vector<std::string> fields = splitAt(lines[i], ' ');
    if (fields.size() != 4) continue;
    InterfaceAddresses& addresses = dump[fields[0]];
    const AddressRecord record{fields[2], modelUnsigned16(fields[3]).value.value_or(24)};
    if (record.address.find(':') != std::string::npos) {
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
  if (!addrtool::fuzz::world.isArmed) return __real_system(command);
  const std::string text = command;
  addrtool::fuzz::require(addrtool::fuzz::namesShortLabel(text),
                          "no command names a label that the kernel cannot hold");
  addrtool::fuzz::world.commands.push_back(text);
  return addrtool::fuzz::world.status;
}

int __wrap_mkstemp(char* path) {
  addrtool::fuzz::require(!addrtool::fuzz::world.isArmed, "no file is written after a failure");
  return __real_mkstemp(path);
}

int __wrap_unlink(const char* path) {
  addrtool::fuzz::require(!addrtool::fuzz::world.isArmed, "no file is removed after a failure");
  return __real_unlink(path);
}

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace addrtool;
  using namespace addrtool::fuzz;
  const auto lines = splitAt(upToNul({reinterpret_cast<const char*>(data), size}), '\n');
  if (lines.size() < 3) return -1;
  const std::string& interface = lines[0];
  const std::string& address = lines[1];
  const std::string& third = lines[2];
  const Ending& ending = endings.at(size % endings.size());
  world.dump = readDump(lines, lines.size());
  world.status = ending.status;

  require(run([&] { addAddress(interface, address, third); }) ==
              modelAdd(interface, address, third, ending),
          "an addition runs its one command");
  const bool isIPv6 = address.find(':') != std::string::npos;
  require(run([&] { deleteAddress(address); }) ==
              (isIPv6 ? modelDeleteIPv6(address, ending) : modelDeleteIPv4(address, ending)),
          "a deletion runs its one command");

  const AliasMap before = world.dump[interface].aliases;
  world.dump = readDump(lines, 3 + (lines.size() - 3) / 2);  // the other addresses have vanished
  world.status = 0;
  require(run([&] { restoreAliases(interface, before, third); }) ==
              modelRestore(interface, before, world.dump[interface].aliases, third),
          "the aliases that vanished are brought back as they were");
  return 0;
}

}  // extern "C"
