// Fuzzes both edits of the IPv6 addresses in an interface file. The first line of the input is the
// address to add and remove ("2001:db8::5/64"). The rest is the file.
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <string>
#include <vector>

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

// The entries of all lists, or nothing if a list is malformed.
std::optional<Entries> listed(const Lines& lines, const std::string& key) {
  Entries entries;
  bool isParsed = true;
  for (const std::string& line : lines) isParsed &= parse(line, key, entries);
  return isParsed ? std::optional(entries) : std::nullopt;
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

void checkOtherLinesAreKept(const Lines& lines, const std::string& written) {
  std::size_t at = 0;
  for (const std::string& line : lines) {
    if (line.starts_with(primaryKey) || line.starts_with(listStem)) continue;
    const std::size_t found = written.find(line, at);
    require(found != std::string::npos, "every other line is kept, byte for byte and in order");
    at = found + line.size();
  }
}

void checkAdd(const std::string& content, const Lines& lines, const AddressRecord& address) {
  const auto written = runEdit(copyWithIPv6, content, address);
  require(written.has_value() == listed(lines, listStem).has_value(),
          "an add fails exactly if a list is malformed");
  if (!written) return;
  checkOtherLinesAreKept(lines, *written);
  require(written->find(listKey + '"' + formatIPv6Entry(address)) != std::string::npos,
          "an add puts the address first in the list");
}

// The list line with these entries, without the removed address.
std::string listLine(Entries entries, const std::string& removed) {
  std::erase_if(entries, [&](const auto& entry) { return modelSameIPv6(entry.address, removed); });
  std::string text;
  for (const AddressRecord& entry : entries) {
    text += (text.empty() ? listKey + '"' : " ") + formatIPv6Entry(entry);
  }
  return text + '"';
}

void checkRemoval(const std::string& content, const Lines& lines, const AddressRecord& address) {
  auto entries = listed(lines, listKey);
  const auto written = runEdit(copyWithoutIPv6, content, address);
  require(entries || !written, "a removal fails if a list is malformed");
  require(!entries || entries->empty() || written, "a removal fails only without another address");
  if (!written) return;
  checkOtherLinesAreKept(lines, *written);
  const std::string allKept = listLine(*entries, address.address);
  std::string promoted = primaryKey;
  if (!entries->empty()) {
    promoted += formatIPv6Entry(entries->front()) + '\n';
    entries->erase(entries->begin());
  }
  const std::string firstPromoted = listLine(*entries, address.address);
  for (const std::string& line : splitAt(*written, '\n')) {
    if (!line.starts_with(listKey)) continue;
    require(
        line == allKept || (line == firstPromoted && written->find(promoted) != std::string::npos),
        "a list loses the address, or its first entry to the primary");
  }
}

// An unquoted list survives formatting and parsing. A quote before the first entry would count as a
// quote around the list.
void checkRoundTrip(const Entries& entries) {
  if (entries.empty() || entries.front().address.find_first_of("\"'") == 0) return;
  std::string line = listKey;
  for (const AddressRecord& entry : entries) line += formatIPv6Entry(entry) + ' ';
  Entries readBack;
  parseIPv6List(line, readBack);
  require(readBack == entries, "an unquoted list reads back as it was written");
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
    checkRoundTrip(entries);
  }
  checkAdd(content, lines, address);
  checkRemoval(content, lines, address);
  return 0;
}

}  // namespace addrtool::fuzz
