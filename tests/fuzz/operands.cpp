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
#include <iterator>
#include <set>
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

struct Row {
  std::string interface;
  std::string suffix;
  AddressRecord record;

  [[nodiscard]] bool isIPv6() const { return record.address.find(':') != std::string::npos; }
  [[nodiscard]] bool isAlias() const { return !isIPv6() && suffix != "-"; }
};

using Rows = std::vector<Row>;

// What the program reads from and does to the machine.
struct World {
  bool isArmed = false;
  Rows table;
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

std::string labelOf(const Row& alias) {
  return alias.interface + ":" + alias.suffix;
}

std::string takeDownCommand(const Row& alias) {
  return "/sbin/ifconfig '" + labelOf(alias) + "' down";
}

std::string ipv6Command(const std::string& interface, const std::string& verb,
                        const AddressRecord& record) {
  return "/sbin/ifconfig " + interface + " " + verb + " " + record.address + "/" +
         std::to_string(record.prefixLength);
}

// The aliases of one interface, sorted by suffix. The first of two equal suffixes counts.
Rows aliasesOf(const std::string& interface, const Rows& table) {
  Rows aliases;
  std::set<std::string> seen;
  for (const Row& row : table) {
    if (row.interface != interface || !row.isAlias()) continue;
    if (seen.insert(row.suffix).second) aliases.push_back(row);
  }
  std::ranges::sort(aliases, {}, &Row::suffix);
  return aliases;
}

bool isSuffixOf(const Rows& aliases, const std::string& suffix) {
  return std::ranges::count(aliases, suffix, &Row::suffix) != 0;
}

std::string lowestFree(const Rows& aliases) {
  int number = 1;
  while (isSuffixOf(aliases, std::to_string(number))) ++number;
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
  if (std::ranges::count(world.table, interface, &Row::interface) == 0) {
    return refused(interface + ": no such network interface.");
  }
  const std::string label = interface + ":" + lowestFree(aliasesOf(interface, world.table));
  if (isTooLong(label)) return refused(interface + ": no free alias number.");
  return ran(bringUpCommand(label, {address, modelPrefixLength(*mask)}), ending);
}

// Whether the command is none for an alias, or the word that the shell takes as its label is short.
bool namesShortLabel(const std::string& command) {
  if (!command.ends_with("' up") && !command.ends_with("' down")) return true;
  const std::size_t start = std::string_view("/sbin/ifconfig '").size();
  return !isTooLong(command.substr(start, command.find('\'', start) - start));
}

Outcome modelTakeDown(const Row& alias, const Ending& ending) {
  const std::string label = labelOf(alias);
  if (isTooLong(label)) return refused(label + ": alias label too long.");
  return ran(takeDownCommand(alias), ending);
}

std::set<std::string> interfaceNames() {
  std::set<std::string> names;
  for (const Row& row : world.table) names.insert(row.interface);
  return names;
}

Outcome modelDeleteIPv4(const std::string& address, const Ending& ending) {
  for (const std::string& interface : interfaceNames()) {
    for (const Row& row : world.table) {
      if (row.interface == interface && !row.isIPv6() && !row.isAlias() &&
          row.record.address == address) {
        return refused(address + ": cannot delete main IP on interface");
      }
    }
    for (const Row& row : aliasesOf(interface, world.table)) {
      if (row.record.address == address) return modelTakeDown(row, ending);
    }
  }
  return refused(address + ": not configured.");
}

Outcome modelDeleteIPv6(const std::string& address, const Ending& ending) {
  for (const std::string& interface : interfaceNames()) {
    Rows ipv6;
    std::ranges::copy_if(world.table, std::back_inserter(ipv6), [&](const Row& row) {
      return row.interface == interface && row.isIPv6();
    });
    for (const Row& row : ipv6) {
      if (!modelSameIPv6(row.record.address, address)) continue;
      if (ipv6.size() == 1) {
        return refused(address + ": cannot remove last address from " + interface);
      }
      return ran(ipv6Command(interface, "del", row.record), ending);
    }
  }
  return refused(address + ": not configured");
}

// One command for each alias of the first table that is missing in the second.
Outcome modelRestore(const Rows& before, const Rows& after, const std::string& deletedSuffix) {
  Outcome outcome;
  if (before.size() < 2) return outcome;
  for (const Row& row : before) {
    if (row.suffix == deletedSuffix || isSuffixOf(after, row.suffix)) continue;
    if (isTooLong(labelOf(row))) {
      outcome.failure = labelOf(row) + ": alias label too long.";
      return outcome;
    }
    outcome.commands.push_back(bringUpCommand(labelOf(row), row.record));
  }
  return outcome;
}

void checkRestore(const std::string& interface, const std::string& deletedSuffix) {
  AddressDump dump;
  readKernelAddresses(dump, false);
  const Rows before = aliasesOf(interface, world.table);
  world.table.resize(world.table.size() / 2);  // the others have vanished
  world.status = 0;
  const Outcome outcome =
      run([&] { restoreAliases(interface, dump[interface].aliases, deletedSuffix); });
  require(outcome == modelRestore(before, aliasesOf(interface, world.table), deletedSuffix),
          "the aliases that vanished are brought back as they were");
}

Rows readRows(const std::vector<std::string>& lines) {
  Rows rows;
  for (std::size_t i = 3; i < lines.size(); ++i) {
    const std::vector<std::string> fields = splitAt(lines[i], ' ');
    if (fields.size() != 4) continue;
    const auto length = modelUnsigned16(fields[3]).value.value_or(24);
    rows.push_back({fields[0], fields[1], {fields[2], length}});
  }
  return rows;
}

}  // namespace
}  // namespace fuzz

// Replaces the function that asks the kernel.
void readKernelAddresses(AddressDump& dump, bool includeHostScope) {
  fuzz::require(!includeHostScope, "addresses of host scope are never asked for");
  for (const fuzz::Row& row : fuzz::world.table) {
    InterfaceAddresses& addresses = dump[row.interface];
    if (row.isIPv6()) {
      addresses.ipv6.push_back(row.record);
    } else if (row.isAlias()) {
      addresses.aliases.insert({row.suffix, row.record});
    } else {
      addresses.primaryIPv4.push_back(row.record);
    }
  }
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
  world.table = readRows(lines);
  world.status = ending.status;

  require(run([&] { addAddress(interface, address, third); }) ==
              modelAdd(interface, address, third, ending),
          "an addition runs its one command");
  const bool isIPv6 = address.find(':') != std::string::npos;
  require(run([&] { deleteAddress(address); }) ==
              (isIPv6 ? modelDeleteIPv6(address, ending) : modelDeleteIPv4(address, ending)),
          "a deletion runs its one command");
  checkRestore(interface, third);
  return 0;
}

}  // extern "C"
