// Fuzzes both edits of the IPv6 addresses in an interface file. The first line of the input is the
// address to add and remove ("2001:db8::5/64"). The rest is the file.
#include <cstdio>
#include <cstdlib>

#include "fuzzing.h"
#include "inventory/address_record.h"
#include "persist/alias_file.h"
#include "persist/ipv6_list.h"

namespace addrtool::fuzz {
namespace {

using Entries = std::vector<AddressRecord>;
using Lines = std::vector<std::string>;

const std::string primaryKey = "IPV6ADDR=";
const std::string listStem = "IPV6ADDR_SECONDARIES";
const std::string listKey = "IPV6ADDR_SECONDARIES=";

// Adds the entries of the line, if it starts with the key. Returns whether it could be parsed.
bool parse(const std::string& line, const std::string& key, Entries& entries) {
  if (!line.starts_with(key)) return true;
  const auto message = failureOf([&] { parseIPv6List(line, entries); });
  if (!message) return true;
  // The message ends at a zero byte of the token.
  const std::size_t end = message->find(": cannot parse IPv6 address");
  require(end != std::string::npos || line.find('\0') != std::string::npos,
          "the message says what failed");
  require(line.find(message->substr(0, end)) != std::string::npos,
          "the message names a token of the line");
  return false;
}

using Edit = int (*)(std::FILE* oldFile, std::FILE* newFile, void* context);

std::optional<std::string> runEdit(Edit edit, std::string content, const AddressRecord& address) {
  char* buffer = nullptr;
  std::size_t size = 0;
  std::FILE* oldFile = fmemopen(content.data(), content.size(), "r");
  std::FILE* newFile = open_memstream(&buffer, &size);
  LabelledAddress context{"eth0", address};
  const int result = edit(oldFile, newFile, &context);
  std::fclose(newFile);
  std::fclose(oldFile);
  const std::string written(buffer, size);
  std::free(buffer);

  require(result == 0 || result == -1, "an edit succeeds or fails");
  require(context.address == address && context.label == "eth0", "the address is only read");
  return result == 0 ? std::optional(written) : std::nullopt;
}

// The entries with a blank before each.
std::string spaced(const Entries& entries) {
  std::string text;
  for (const AddressRecord& entry : entries) text += ' ' + formatIPv6Entry(entry);
  return text;
}

// The file after an add, or nothing if a list is malformed. The list only grows: a second one
// repeats the first.
std::optional<std::string> modelAdd(const Lines& lines, const AddressRecord& address) {
  std::string list = listKey + '"' + formatIPv6Entry(address);
  std::string written;
  bool isListed = false;
  for (const std::string& line : lines) {
    Entries entries;
    if (!parse(line, listStem, entries)) return std::nullopt;
    if (!entries.empty()) list += spaced(entries) + "\"\n";
    written += entries.empty() ? line : list;
    isListed |= !entries.empty();
  }
  return isListed ? written : written + list + "\"\n";
}

// The address of a primary line.
std::string primaryOf(const std::string& line) {
  constexpr const char* margin = "'\" \n\t\r";
  const std::string value = line.substr(0, line.find_last_not_of(margin) + 1);
  const std::size_t start = value.find_first_not_of(margin, primaryKey.size());
  return start == std::string::npos ? "" : splitAt(value.substr(start), '/').front();
}

// The file after a removal, or nothing if a list is malformed or no other address is left.
std::optional<std::string> modelRemoval(const Lines& lines, const std::string& address) {
  Entries entries;
  bool isParsed = true;
  bool isPrimary = false;
  for (const std::string& line : lines) {
    isParsed &= parse(line, listKey, entries);
    if (line.starts_with(primaryKey)) isPrimary = modelSameIPv6(primaryOf(line), address);
  }
  if (!isParsed || (isPrimary && entries.empty())) return std::nullopt;

  std::string primary;
  if (isPrimary) {
    primary = primaryKey + formatIPv6Entry(entries.front()) + '\n';
    entries.erase(entries.begin());
  }
  std::erase_if(entries, [&](const auto& entry) { return modelSameIPv6(entry.address, address); });
  std::string written;
  for (const std::string& line : lines) {
    if (isPrimary && line.starts_with(primaryKey)) {
      written += primary;
    } else if (!line.starts_with(listKey)) {
      written += line;
    } else if (!entries.empty()) {
      written += listKey + '"' + spaced(entries).substr(1) + "\"\n";
    }
  }
  return written;
}

}  // namespace

int checkInput(Octets input) {
  const std::string text(input.begin(), input.end());
  const std::size_t lineEnd = text.find('\n');
  if (lineEnd == std::string::npos) return -1;

  const auto operand = splitAt(upToNul(text.substr(0, lineEnd)), '/');
  const AddressRecord address{operand.front(), modelUnsigned16(operand.back()).value.value_or(64)};
  const std::string content = text.substr(lineEnd + 1);
  const Lines lines = linesOf(content, 8095);  // the program reads a longer line in pieces
  for (const std::string& line : lines) {
    Entries entries;
    parse(line, "", entries);
    // The blank behind the key separates it from a quote, which would enclose the list.
    Entries readBack;
    parseIPv6List(listKey + spaced(entries), readBack);
    require(readBack == entries, "an unquoted list reads back as it was written");
  }
  require(runEdit(copyWithIPv6, content, address) == modelAdd(lines, address),
          "an add puts the address first in the list, and fails only if a list is malformed");
  require(runEdit(copyWithoutIPv6, content, address) == modelRemoval(lines, address.address),
          "a removal takes the address from the list, or promotes the first entry");
  return 0;
}

}  // namespace addrtool::fuzz
