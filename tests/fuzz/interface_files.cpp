// Fuzzes both edits of the IPv6 addresses in an interface file. The first line of the input is the
// address to add and remove ("2001:db8::5/64"). The rest is the file.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "inventory/address_record.h"
#include "persist/alias_file.h"
#include "persist/ipv6_list.h"
#include "require.h"
#include "text_models.h"

namespace addrtool::fuzz {
namespace {

using Entries = std::vector<AddressRecord>;
using Lines = std::vector<std::string>;

const std::string primaryKey = "IPV6ADDR=";
const std::string listStem = "IPV6ADDR_SECONDARIES";
const std::string listKey = "IPV6ADDR_SECONDARIES=";

bool isQuote(char character) {
  return character == '"' || character == '\'';
}

Lines modelLines(const std::string& content) {
  Lines lines;
  for (std::size_t at = 0; at < content.size(); at += lines.back().size()) {
    const std::size_t end = std::min(content.find('\n', at), content.size() - 1);
    lines.push_back(content.substr(at, std::min<std::size_t>(end - at + 1, 8095)));
  }
  return lines;
}

std::optional<AddressRecord> modelEntry(const std::string& token) {
  const std::vector<std::string> parts = splitAt(token, '/');
  if (parts.size() != 2) return std::nullopt;
  return AddressRecord{parts[0], modelUnsigned16(upToNul(parts[1])).value.value_or(0)};
}

// Required: only opening quotes are removed. The length is counted from the start of the line to
// the closing quotes.
std::string modelListValue(const std::string& line) {
  std::size_t start = line.find('=') + 1;
  while (start < line.size() && isQuote(line[start])) ++start;
  std::size_t end = line.size();
  while (isQuote(line[end - 1])) --end;
  return line.substr(start, end - 1);
}

// The entries of a list line up to the first malformed token.
struct ModelList {
  Entries entries;
  std::optional<std::string> malformed;
};

ModelList modelList(const std::string& line) {
  ModelList list;
  if (line.find('=') == std::string::npos) return list;
  std::string value = modelListValue(line);
  for (const char blank : {'\t', '\n', '\v', '\f', '\r'}) std::ranges::replace(value, blank, ' ');
  for (const std::string& token : splitAt(value, ' ')) {
    if (token.empty()) continue;
    const auto entry = modelEntry(token);
    if (!entry) {
      list.malformed = token;
      break;
    }
    list.entries.push_back(*entry);
  }
  return list;
}

std::string formatted(const AddressRecord& entry) {
  return entry.address + "/" + std::to_string(entry.prefixLength);
}

std::string joined(const Entries& entries) {
  std::string text;
  for (const AddressRecord& entry : entries) text += (text.empty() ? "" : " ") + formatted(entry);
  return text;
}

// The new contents, or nothing if the edit must fail.
std::optional<std::string> modelAddition(const Lines& lines, const AddressRecord& added) {
  std::string content;
  std::string list = listKey + "\"" + formatted(added);
  bool isWritten = false;
  for (const std::string& line : lines) {
    const ModelList old = line.starts_with(listStem) ? modelList(line) : ModelList{};
    if (old.malformed) return std::nullopt;
    if (!old.entries.empty()) {
      list += " " + joined(old.entries) + "\"\n";
      isWritten = true;
    }
    content += old.entries.empty() ? line : list;
  }
  return isWritten ? content : content + list + "\"\n";
}

std::string modelPrimary(const std::string& line) {
  const std::string blanks = "'\" \n\t\r";
  std::string value = line.substr(primaryKey.size());
  while (!value.empty() && blanks.find(value.back()) != std::string::npos) value.pop_back();
  while (!value.empty() && blanks.find(value.front()) != std::string::npos) value.erase(0, 1);
  return splitAt(value, '/').front();
}

struct ModelAddresses {
  bool isPrimary = false;
  bool isMalformed = false;
  Entries secondaries;
};

ModelAddresses modelAddresses(const Lines& lines, const std::string& address) {
  ModelAddresses found;
  for (const std::string& line : lines) {
    if (line.starts_with(primaryKey)) found.isPrimary = modelSameIPv6(modelPrimary(line), address);
    if (!line.starts_with(listKey)) continue;
    const ModelList list = modelList(line);
    if (list.malformed) found.isMalformed = true;
    found.secondaries.insert(found.secondaries.end(), list.entries.begin(), list.entries.end());
  }
  return found;
}

std::optional<std::string> modelRemoval(const Lines& lines, const std::string& address) {
  const auto [isPrimary, isMalformed, secondaries] = modelAddresses(lines, address);
  if (isMalformed || (isPrimary && secondaries.empty())) return std::nullopt;

  Entries remaining;
  for (std::size_t i = isPrimary ? 1 : 0; i < secondaries.size(); ++i) {
    const AddressRecord& entry = secondaries[i];
    if (!modelSameIPv6(entry.address, address)) remaining.push_back(entry);
  }
  std::string content;
  for (const std::string& line : lines) {
    if (line.starts_with(primaryKey) && isPrimary) {
      content += primaryKey + formatted(secondaries.front()) + "\n";
    } else if (!line.starts_with(listKey)) {
      content += line;
    } else if (!remaining.empty()) {
      content += listKey + "\"" + joined(remaining) + "\"\n";
    }
  }
  return content;
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

void checkEdits(const std::string& content, const AddressRecord& address) {
  const Lines lines = modelLines(content);
  require(runEdit(copyWithIPv6, content, address) == modelAddition(lines, address),
          "an add puts the address first in the list");
  require(runEdit(copyWithoutIPv6, content, address) == modelRemoval(lines, address.address),
          "a delete promotes the first secondary or shortens the list");
}

// An unquoted list survives formatting and parsing. A quote before the first entry would count as a
// quote around the list.
void checkRoundTrip(const Entries& entries) {
  if (entries.empty() || isQuote(entries.front().address[0])) return;
  std::string line = listKey;
  for (const AddressRecord& entry : entries) line += formatIPv6Entry(entry) + ' ';
  Entries readBack;
  parseIPv6List(line, readBack);
  require(readBack == entries, "an unquoted list reads back as it was written");
}

void checkParsing(const std::string& line) {
  const ModelList expected = modelList(line);
  Entries entries;
  try {
    parseIPv6List(line, entries);
    require(!expected.malformed, "a malformed list is refused");
  } catch (const std::runtime_error& failure) {
    require(expected.malformed.has_value(), "a well-formed list is taken");
    require(failure.what() == upToNul(*expected.malformed + ": cannot parse IPv6 address"),
            "the message names the token");
  }
  checkRoundTrip(entries);
  require(entries == expected.entries, "a list is read entry by entry");
}

}  // namespace
}  // namespace addrtool::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace addrtool;
  using namespace addrtool::fuzz;
  const std::string input(reinterpret_cast<const char*>(data), size);
  const std::size_t lineEnd = input.find('\n');
  if (lineEnd == std::string::npos) return -1;

  const auto operand = splitAt(upToNul(input.substr(0, lineEnd)), '/');
  const std::string content = input.substr(lineEnd + 1);
  for (const std::string& line : modelLines(content)) checkParsing(line);
  checkEdits(content, {operand.front(), modelUnsigned16(operand.back()).value.value_or(64)});
  return 0;
}
