// How a list is parsed, and what an edit does with bytes, pieces and errors. Transcripts hold the
// rules of the edits.
#include "persist/ipv6_list.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstdlib>
#include <map>
#include <utility>

#include "persist/replace_file.h"
#include "support/child_process.h"
#include "support/collect.h"
#include "support/files.h"

namespace addrtool::testing {
namespace {

using Entries = std::vector<AddressRecord>;

TEST(IPv6List, IsTheTextAfterTheEqualsSignSplitAtWhiteSpace) {
  const AddressRecord two{"2001:db8::2", 64};
  const AddressRecord three{"2001:db8::3", 48};
  const std::map<std::string, Entries> table{
      {"K=2001:db8::2/64", {two}},
      {"=2001:db8::2/64\n", {two}},
      {"K=2001:db8::2/64 2001:db8::3/48\n", {two, three}},
      {"K= \t2001:db8::2/64\v \f2001:db8::3/48\r\n", {two, three}},
      {"K=2001:db8::2/64\r2001:db8::3/48 \r\n", {two, three}},
      {"", {}},
      {"\n", {}},
      {"K\n", {}},
      {"2001:db8::2/64\n", {}},
      {"K=", {}},
      {"K= \t\n", {}},
      {"K=\"\"\"''\n", {}},
      // A closing quote costs the last entry its length. The value starts after all quotes.
      {"K=\"2001:db8::2/64\"\n", {{"2001:db8::2", 0}}},
      {"K='2001:db8::2/64'", {{"2001:db8::2", 0}}},
      {"K=\"'\"2001:db8::2/64 2001:db8::3/48'\"\n", {two, {"2001:db8::3", 0}}},
      {"K=''\"2001:db8::2/64\n", {two}},
      // Required: the length of the value is the position of its end in the line. That is too long
      // unless there is no key.
      {"=2001:db8::2/64\"", {two}},
      // No address is checked, and no comment ends the list.
      {"K=2001:DB8:0:0::1/64 junk/7 192.0.2.1/24 /8 a=b/9 #c/1 d,e/2 `f/3\n",
       {{"2001:DB8:0:0::1", 64},
        {"junk", 7},
        {"192.0.2.1", 24},
        {"", 8},
        {"a=b", 9},
        {"#c", 1},
        {"d,e", 2},
        {"`f", 3}}},
      {"K=a/0 b/ c/64x d/-1 e/65536 f/x g/'64' h/0x40\n",
       {{"a", 0}, {"b", 0}, {"c", 0}, {"d", 0}, {"e", 0}, {"f", 0}, {"g", 0}, {"h", 0}}},
      {"K=`a/1`\n", {{"`a", 0}}},
      {"K=a/65535 b/+64 c/0064 d/129\n", {{"a", 65535}, {"b", 64}, {"c", 64}, {"d", 129}}}};
  for (const auto& [line, expected] : table) {
    Entries entries{two};  // new entries are appended
    parseIPv6List(line, entries);
    entries.erase(entries.begin());
    EXPECT_EQ(entries, expected) << "for the line '" << line << "'";
  }
}

TEST(IPv6List, AnEntryNeedsExactlyOneSlash) {
  const std::map<std::string, std::string> table{{"K=a/1 2001:db8::2 b/2\n", "2001:db8::2"},
                                                 {"K=2001:db8::2//64\n", "2001:db8::2//64"},
                                                 {"K=2001:db8::2/64/\n", "2001:db8::2/64/"},
                                                 {"K=//\n", "//"},
                                                 {"K=a/1,b/2\n", "a/1,b/2"},
                                                 {"K=a/1;b/2\n", "a/1;b/2"},
                                                 {"K=2001:db8::2/ 64\n", "64"},
                                                 {"K=\"2001:db8::2/64 \"\n", "\""},
                                                 {"K= \"\"\n", "\"\""},
                                                 {"K=\"2001:db8::2\"\n", "2001:db8::2\""},
                                                 {"K=a/1 # b/2\n", "#"}};
  for (const auto& [line, token] : table) {
    Entries entries;
    EXPECT_EQ(failureOf([&, &text = line] { parseIPv6List(text, entries); }),
              token + ": cannot parse IPv6 address");
  }
}

TEST(IPv6List, KeepsTheEntriesBeforeTheOneThatCannotBeParsed) {
  Entries entries;
  EXPECT_EQ(failureOf([&] { parseIPv6List("K=a/1 b/2 c d/4\n", entries); }),
            "c: cannot parse IPv6 address");
  EXPECT_EQ(entries, (Entries{{"a", 1}, {"b", 2}}));
}

TEST(IPv6List, FormatsAnEntryWithItsLengthInDecimal) {
  EXPECT_EQ(formatIPv6Entry({"2001:DB8:0::5", 0}), "2001:DB8:0::5/0");
  EXPECT_EQ(formatIPv6Entry({"", 65535}), "/65535");
}

// How an edit ended, with its result as the exit status, and the new file.
using Edited = std::pair<Outcome, std::string>;

// Runs the edit in a child process to capture its messages. Each text is read by itself, and an
// empty one is a read error.
Edited edit(FileWriter writer, const std::string& address, std::queue<std::string> texts) {
  const TemporaryDirectory directory;
  const Outcome outcome = runInChild([&] {
    std::FILE* oldFile = openTexts(texts);
    std::FILE* newFile = std::fopen((directory / "new").c_str(), "w");
    LabelledAddress context{"eth0", {address, 64}};
    if (texts.front().empty()) std::fgetc(oldFile);  // so the stream has an error before the edit
    errno = 0;
    const int result = writer(oldFile, newFile, &context);
    std::fclose(oldFile);
    std::fclose(newFile);
    std::exit(result);
  });
  return {outcome, readFile(directory / "new")};
}

Edited adding(const std::string& contents) {
  return edit(copyWithIPv6, "2001:db8::5", std::queue<std::string>({contents}));
}

Edited removing(const std::string& address, const std::string& contents) {
  return edit(copyWithoutIPv6, address, std::queue<std::string>({contents}));
}

void expectAdded(const std::string& before, const std::string& after) {
  EXPECT_EQ(adding(before), Edited(silentSuccess, after)) << "for the file\n" << before;
}

void expectRemoved(const std::string& address, const std::string& before,
                   const std::string& after) {
  EXPECT_EQ(removing(address, before), Edited(silentSuccess, after))
      << "without " << address << " for the file\n"
      << before;
}

const std::string listKey = "IPV6ADDR_SECONDARIES=";
const std::string primary = "IPV6ADDR=2001:db8::1/64\n";

// The line that an edit writes.
std::string listOf(const std::string& entries) {
  return listKey + '"' + entries + "\"\n";
}

const std::string newList = listOf("2001:db8::5/64");

TEST(IPv6Removing, QuotesBlanksAndPrefixLengthOfThePrimaryAreIgnored) {
  const std::string list = listKey + "a/1\n";
  for (const std::string value :
       {"2001:db8::1/64\n", "2001:db8::1\n", "\"2001:db8::1/64\"\n", "'2001:db8::1/64'\n",
        " \t'\" 2001:db8::1 \"'\r\n", "\r2001:db8::1\t\n", "2001:db8::1/64/x\n", "2001:db8::1/\n",
        "2001:db8::1"}) {
    expectRemoved("2001:db8::1", list + "IPV6ADDR=" + value, "IPV6ADDR=a/1\n");
  }
  for (const std::string value : {"2001:db8::1 /64", "\"2001:db8::1\"/64", "2001:db8::1\f",
                                  "\v2001:db8::1", "2001:db8::1%eth0", "2001:db8::1 # x",
                                  "2001:db8::1#x", "/2001:db8::1", "", "::1", "x2001:db8::1"}) {
    const std::string file = listOf("a/1 b/2") + "IPV6ADDR=" + value + '\n';
    expectRemoved("2001:db8::1", file, listOf("a/1 b/0") + "IPV6ADDR=" + value + '\n');
  }
}

TEST(IPv6Removing, AnInvalidAddressMatchesNothing) {
  for (const std::string address : {"", "junk", "192.0.2.1", "2001:db8::g", "2001:db8:::1"}) {
    const std::string file = "IPV6ADDR=" + address + "/64\n";
    expectRemoved(address, file + listKey + address + "/64 a/1\n",
                  file + listOf(address + "/64 a/1"));
  }
  expectRemoved("2001:db8::1/64", primary, primary);
}

TEST(IPv6Edits, OtherLinesAreCopiedByteForByte) {
  std::string bytes;
  for (int byte = 0; byte < 256; ++byte) bytes += static_cast<char>(byte);
  const std::string lines = bytes + "\r\n\n  \n" + std::string(3, '\0') + "\n" + bytes + "\n";
  expectRemoved("2001:db8::1", lines + "no line feed", lines + "no line feed");
  expectAdded(lines, lines + newList);
}

TEST(IPv6Edits, ALongLineIsReadInPiecesOf8095Bytes) {
  const std::string list = listKey + "a/1\n";
  for (const std::size_t length : {8095U, 2 * 8095U}) {
    const std::string filler(length, 'x');
    expectAdded(filler + list, filler + listOf("2001:db8::5/64 a/1"));
    expectRemoved("2001:db8::1", filler + primary + list, filler + "IPV6ADDR=a/1\n");
  }
  for (const std::size_t length : {8094U, 8096U, 2 * 8095U - 1}) {
    const std::string filler(length, 'x');
    expectAdded(filler + list, filler + list + newList);
    expectRemoved("2001:db8::1", filler + primary + filler + list,
                  filler + primary + filler + list);
  }
  const std::string line = std::string(8094, 'x') + '\n';  // exactly one piece
  expectAdded(line + list, line + listOf("2001:db8::5/64 a/1"));
}

TEST(IPv6Edits, AListLongerThanAPieceIsSplit) {
  std::string piece = listKey + "2001:db8::2/64";
  piece.resize(8095, ' ');
  expectAdded(piece + "2001:db8::3/64\nA=1\n",
              listOf("2001:db8::5/64 2001:db8::2/64") + "2001:db8::3/64\nA=1\n");

  piece.replace(8095 - 4, 4, "2001");
  const Edited split{onBothStreams("2001: cannot parse IPv6 address\n", 255), ""};
  EXPECT_EQ(adding(piece + ":db8::3/64\n"), split);
  EXPECT_EQ(removing("2001:db8::2", piece + ":db8::3/64\n"), split);
}

TEST(IPv6Edits, AReportIsNoFormat) {
  EXPECT_EQ(adding(listKey + "%s%n\n").first,
            onBothStreams("%s%n: cannot parse IPv6 address\n", 255));
}

TEST(IPv6Edits, AReadErrorFailsAndOnlyAnAddReportsABadListBeforeIt) {
  for (const FileWriter writer : {copyWithIPv6, copyWithoutIPv6}) {
    for (const std::string text :
         {"", "A=1\n", "A=1\nB", "IPV6ADDR=2001:db8::5/64\n",
          "IPV6ADDR_SECONDARIES=a/1\nIPV6ADDR_SECONDARIES=b/1 cut", "IPV6ADDR_SECONDARIES=bad\n"}) {
      // An add parses each line as it is read; a removal reads the whole file first.
      const bool isReported = writer == copyWithIPv6 && text.ends_with("bad\n");
      EXPECT_EQ(edit(writer, "2001:db8::5", std::queue<std::string>({text, ""})).first,
                onBothStreams(isReported ? "bad: cannot parse IPv6 address\n" : "", 255))
          << text;
    }
    EXPECT_EQ(edit(writer, "2001:db8::5", std::queue<std::string>({"", "A=1\n"})).first,
              onBothStreams("", 255));
  }
}

TEST(FileWriters, IgnoreAWriteError) {
  for (const FileWriter writer : {copyWithIPv6, copyWithoutIPv6, writeAliasContent}) {
    std::queue<std::string> texts({"A=1\nIPV6ADDR_SECONDARIES=a/1\n"});
    std::FILE* oldFile = openTexts(texts);
    std::FILE* full = std::fopen("/dev/full", "w");
    std::setvbuf(full, nullptr, _IONBF, 0);
    LabelledAddress context{"eth0", {"2001:db8::5", 64}};
    EXPECT_EQ(writer(oldFile, full, &context), 0);
    EXPECT_NE(std::ferror(full), 0);
    std::fclose(oldFile);
    std::fclose(full);
  }
}

}  // namespace
}  // namespace addrtool::testing
