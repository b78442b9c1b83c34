// Fuzzes both edits of the IPv6 addresses in an interface file. The input is the file.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "fuzzing.h"
#include "persist/ipv6_list.h"

namespace addrtool::fuzz {
namespace {

using Text = std::string_view;
using Edit = int(std::FILE* oldFile, std::FILE* newFile, void* context);

const AddressRecord address{"2001:db8::5", 64};

std::vector<Text> linesOf(Text file) {
  std::vector<Text> lines;
  for (; !file.empty(); file.remove_prefix(lines.back().size())) {
    lines.push_back(file.substr(0, std::min(file.find('\n'), file.size() - 1) + 1));
  }
  return lines;
}

bool isParsed(Text line) {
  std::vector<AddressRecord> entries{address};
  bool isGood = true;
  try {
    parseIPv6List(std::string(line), entries);
  } catch (const std::runtime_error&) {
    isGood = false;
  }
  require(!entries.empty() && entries.front() == address, "earlier entries stay, also on failure");
  return isGood;
}

// The new file, or nothing if the edit fails.
std::optional<std::string> run(Edit* edit, std::string content) {
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
  return result == 0 ? std::optional(written) : std::nullopt;
}

// Runs the edit, which may change lines that start with the list's key or with the other text.
std::optional<std::string> check(Edit* edit, const std::string& file, Text listKey, Text other) {
  const auto edited = run(edit, file);
  const auto keptLines = [&](Text text) {
    std::string kept;
    for (const Text line : linesOf(text)) {
      if (!line.starts_with(listKey) && !line.starts_with(other)) kept += line;
    }
    return kept;
  };
  require(!edited || keptLines(file) == keptLines(*edited), "other lines stay, byte for byte");
  const bool isGood = std::ranges::all_of(
      linesOf(file), [&](Text line) { return !line.starts_with(listKey) || isParsed(line); });
  require(isGood || !edited, "a malformed list cannot be edited");
  require(!isGood || edited || edit == copyWithoutIPv6, "only a malformed list prevents an add");
  return edited;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::string file(data, data + size);
  if (size > 8000) {  // a line may be too long; the program reads such a line in pieces
    run(copyWithIPv6, file);
    run(copyWithoutIPv6, file);
    return 0;
  }
  file += '\n';  // else a new list would become part of the last line
  // The second list of a file starts with the first and its line feed, then comes a blank.
  const auto added = check(copyWithIPv6, file, "IPV6ADDR_SECONDARIES", " ");
  const auto removed = check(copyWithoutIPv6, file, "IPV6ADDR_SECONDARIES=", "IPV6ADDR=");
  require(!added || run(copyWithoutIPv6, *added), "what was added can be removed");
  for (const Text line : linesOf(removed ? *removed : Text())) {
    require(!line.starts_with("IPV6ADDR_SECONDARIES=") || line.find(" 2001:db8::5/") == Text::npos,
            "what was removed is in no list");
  }
  return 0;
}

}  // namespace addrtool::fuzz
