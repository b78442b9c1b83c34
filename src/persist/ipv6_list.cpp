#include "persist/ipv6_list.h"

#include <algorithm>
#include <boost/algorithm/string/classification.hpp>
#include <boost/algorithm/string/predicate.hpp>
#include <boost/algorithm/string/split.hpp>
#include <boost/algorithm/string/trim.hpp>
#include <cstddef>
#include <cstdio>
#include <exception>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "inventory/address_record.h"
#include "persist/alias_file.h"
#include "persist/replace_file.h"
#include "runtime/messages.h"
#include "runtime/parse_unsigned16.h"

namespace addrtool {
namespace {

constexpr std::string_view primaryKey = "IPV6ADDR=";
constexpr std::string_view listStem = "IPV6ADDR_SECONDARIES";  // an add matches longer keys, too
constexpr std::string_view listKey = "IPV6ADDR_SECONDARIES=";
constexpr const char* listStart = "IPV6ADDR_SECONDARIES=\"";
constexpr const char* listEnd = "\"\n";

constexpr std::size_t longestPiece = 8095;  // longer lines are read in pieces (required)

// Reads the next line with its line feed, or the next piece of a long line. Zero bytes are ordinary
// bytes. Returns false at the end of the file and on an error.
bool readLine(std::FILE* file, std::string& line) {
  line.clear();
  int byte = 0;
  while (line.size() < longestPiece && byte != '\n' && (byte = getc_unlocked(file)) != EOF) {
    line.push_back(static_cast<char>(byte));
  }
  return !line.empty() && std::ferror(file) == 0;
}

std::vector<std::string> readLines(std::FILE* file) {
  std::vector<std::string> lines;
  for (std::string line; readLine(file, line);) lines.push_back(line);
  return lines;
}

// A failed write is not detected (required).
void writeText(const std::string& text, std::FILE* file) {
  std::fwrite(text.data(), 1, text.size(), file);
}

AddressRecord parseEntry(const std::string& token) {
  std::vector<std::string> parts;
  boost::split(parts, token, boost::is_any_of("/"));
  if (parts.size() != 2) throw std::runtime_error(token + ": cannot parse IPv6 address");
  AddressRecord entry{.address = parts[0], .prefixLength = 0};
  parseUnsigned16(parts[1].c_str(), &entry.prefixLength);
  return entry;
}

std::string primaryAddress(const std::string& line) {
  std::string value = line.substr(primaryKey.size());
  boost::trim_if(value, boost::is_any_of("'\" \n\t\r"));
  return value.substr(0, value.find('/'));
}

// `list` is never reset, so a second list line repeats the first (required).
int addToList(std::FILE* oldFile, std::FILE* newFile, const AddressRecord& added) {
  std::string list = listStart + formatIPv6Entry(added);
  bool isWritten = false;
  for (std::string line; readLine(oldFile, line);) {
    std::vector<AddressRecord> entries;
    if (boost::starts_with(line, listStem)) parseIPv6List(line, entries);
    if (entries.empty()) {
      writeText(line, newFile);
      continue;
    }
    for (const AddressRecord& entry : entries) list += ' ' + formatIPv6Entry(entry);
    list += listEnd;
    writeText(list, newFile);
    isWritten = true;
  }
  if (!isWritten) writeText(list + listEnd, newFile);
  return std::ferror(oldFile) == 0 ? 0 : -1;
}

std::string formatList(const std::vector<AddressRecord>& entries) {
  if (entries.empty()) return "";
  std::string list = listStart;
  for (const AddressRecord& entry : entries) list += formatIPv6Entry(entry) + ' ';
  list.pop_back();
  return list + listEnd;
}

// What the lines of a file say about one address.
struct ListedAddresses {
  bool isPrimary = false;                  // the last IPV6ADDR line has the address
  std::vector<AddressRecord> secondaries;  // the entries of all list lines
};

ListedAddresses readLists(const std::vector<std::string>& lines, const std::string& address) {
  ListedAddresses listed;
  for (const std::string& line : lines) {
    if (boost::starts_with(line, primaryKey)) {
      listed.isPrimary = isSameIPv6Address(primaryAddress(line), address);
    }
    if (boost::starts_with(line, listKey)) parseIPv6List(line, listed.secondaries);
  }
  return listed;
}

// Promotes the first secondary, even if it is the address being removed. Returns the new line.
std::string promoteFirst(std::vector<AddressRecord>& secondaries, const std::string& removed) {
  if (secondaries.empty()) throw std::runtime_error("Cannot remove last IPv6 address " + removed);
  std::string line = std::string(primaryKey) + formatIPv6Entry(secondaries.front()) + '\n';
  secondaries.erase(secondaries.begin());
  return line;
}

int removeFromList(std::FILE* oldFile, std::FILE* newFile, const AddressRecord& removed) {
  const std::vector<std::string> lines = readLines(oldFile);
  if (std::ferror(oldFile) != 0) return -1;

  auto [isPrimary, secondaries] = readLists(lines, removed.address);
  const std::string newPrimary = isPrimary ? promoteFirst(secondaries, removed.address) : "";
  std::erase_if(secondaries, [&removed](const AddressRecord& entry) {
    return isSameIPv6Address(entry.address, removed.address);
  });
  const std::string newList = formatList(secondaries);

  for (const std::string& line : lines) {
    if (isPrimary && boost::starts_with(line, primaryKey)) {
      writeText(newPrimary, newFile);
    } else if (boost::starts_with(line, listKey)) {
      writeText(newList, newFile);
    } else {
      writeText(line, newFile);
    }
  }
  return 0;
}

using Edit = int (*)(std::FILE* oldFile, std::FILE* newFile, const AddressRecord& address);

// replaceFile expects a status, so report the exception here and return -1.
int runEdit(Edit edit, std::FILE* oldFile, std::FILE* newFile, void* context) {
  try {
    return edit(oldFile, newFile, static_cast<const LabelledAddress*>(context)->address);
  } catch (const std::exception& failure) {
    reportMessage(0, unusedFlag, "%s", failure.what());
    return -1;
  }
}

}  // namespace

void parseIPv6List(const std::string& line, std::vector<AddressRecord>& entries) {
  constexpr const char* quotes = "'\"";
  constexpr const char* blanks = " \t\n\v\f\r";  // std::isspace with a locale doubles the program
  const std::size_t equals = line.find('=');
  if (equals == std::string::npos) return;
  const std::size_t start = std::min(line.find_first_not_of(quotes, equals + 1), line.size());
  // The second argument is an index, not a length, so a closing quote stays in (required).
  const std::string value = line.substr(start, line.find_last_not_of(quotes));

  std::vector<std::string> tokens;
  boost::split(tokens, value, boost::is_any_of(blanks), boost::token_compress_on);
  for (const std::string& token : tokens) {
    if (!token.empty()) entries.push_back(parseEntry(token));
  }
}

int copyWithIPv6(std::FILE* oldFile, std::FILE* newFile, void* context) {
  return runEdit(addToList, oldFile, newFile, context);
}

int copyWithoutIPv6(std::FILE* oldFile, std::FILE* newFile, void* context) {
  return runEdit(removeFromList, oldFile, newFile, context);
}

void addIPv6ToInterfaceFile(LabelledAddress added) {
  replaceFile(interfaceConfigPath(added.label).c_str(), copyWithIPv6, &added, 1);
}

void removeIPv6FromInterfaceFile(LabelledAddress removed) {
  replaceFile(interfaceConfigPath(removed.label).c_str(), copyWithoutIPv6, &removed, 1);
}

}  // namespace addrtool
