#include "persist/ipv6_list.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstdlib>
#include <utility>

#include "persist/replace_file.h"
#include "support/child_process.h"
#include "support/collect.h"
#include "support/files.h"

namespace addrtool::testing {
namespace {

using Entries = std::vector<AddressRecord>;

void expectParsed(const Entries& expected, const std::vector<std::string>& lines) {
  for (const std::string& line : lines) {
    Entries entries;
    parseIPv6List(line, entries);
    EXPECT_EQ(entries, expected) << "for the line '" << line << "'";
  }
}

const AddressRecord two{"2001:db8::2", 64};
const AddressRecord three{"2001:db8::3", 48};

TEST(IPv6List, IsTheTextAfterTheEqualsSignSplitAtWhiteSpace) {
  expectParsed({two}, {"K=2001:db8::2/64", "K=2001:db8::2/64\n", "=2001:db8::2/64\n"});
  expectParsed({two, three},
               {"K=2001:db8::2/64 2001:db8::3/48\n", "K= \t2001:db8::2/64\v \f2001:db8::3/48\r\n"});
  expectParsed({}, {"", "\n", "K\n", "2001:db8::2/64\n", "K=", "K=\n", "K= \t\n", "K=\"\"",
                    "K=''\n", "K=\"\"\"''\n"});
}

TEST(IPv6List, AClosingQuoteCostsTheLastEntryItsPrefixLength) {
  expectParsed({{"2001:db8::2", 0}},
               {"K=\"2001:db8::2/64\"\n", "K='2001:db8::2/64'\n", "K=\"2001:db8::2/64\""});
  expectParsed({two, {"2001:db8::3", 0}}, {"K=\"2001:db8::2/64 2001:db8::3/64\"\n",
                                           "K=\"'\"2001:db8::2/64 2001:db8::3/64'\"\n"});
  expectParsed({two}, {"K=\"2001:db8::2/64\n", "K=''\"2001:db8::2/64\n"});
  // Required: the length of the value is the position of its end in the line. That is too long
  // unless there is no key.
  expectParsed({two}, {"=2001:db8::2/64\""});
}

TEST(IPv6List, KeepsTheSpellingOfAddresses) {
  expectParsed({{"2001:DB8:0:0::1", 64}, {"junk", 7}, {"192.0.2.1", 24}, {"", 8}, {"a=b", 9}},
               {"K=2001:DB8:0:0::1/64 junk/7 192.0.2.1/24 /8 a=b/9\n"});
  expectParsed({{"a", 1}, {"#b", 2}}, {"K=a/1 #b/2\n"});  // no comment
}

TEST(IPv6List, AnInvalidPrefixLengthIs0) {
  expectParsed({{"a", 0}, {"b", 0}, {"c", 0}, {"d", 0}, {"e", 0}, {"f", 0}, {"g", 0}, {"h", 0}},
               {"K=a/0 b/ c/64x d/-1 e/65536 f/x g/'64' h/0x40\n"});
  expectParsed({{"a", 65535}, {"b", 64}, {"c", 64}, {"d", 129}},
               {"K=a/65535 b/+64 c/0064 d/129\n"});
}

TEST(IPv6List, IsAppendedToWhatIsThere) {
  Entries entries{{"2001:db8::1", 64}};
  parseIPv6List("K=2001:db8::2/64\n", entries);
  parseIPv6List("K=2001:db8::2/64\n", entries);
  EXPECT_EQ(entries, (Entries{{"2001:db8::1", 64}, {"2001:db8::2", 64}, {"2001:db8::2", 64}}));
}

TEST(IPv6List, AnEntryNeedsExactlyOneSlash) {
  for (const auto& [line, token] : {std::pair("K=2001:db8::2\n", "2001:db8::2"),
                                    {"K=a/1 2001:db8::2 b/2\n", "2001:db8::2"},
                                    {"K=a/1 # b/2\n", "#"},
                                    {"K=2001:db8::2//64\n", "2001:db8::2//64"},
                                    {"K=2001:db8::2/64/\n", "2001:db8::2/64/"},
                                    {"K=//\n", "//"},
                                    {"K=2001:db8::2/ 64\n", "64"},
                                    {"K=\"2001:db8::2/64 \"\n", "\""},
                                    {"K='2001:db8::2/64 '\n", "'"},
                                    {"K= \"\"\n", "\"\""},
                                    {"K=\"2001:db8::2\"\n", "2001:db8::2\""}}) {
    Entries entries;
    EXPECT_EQ(failureOf([&, text = line] { parseIPv6List(text, entries); }),
              token + std::string(": cannot parse IPv6 address"));
  }
}

TEST(IPv6List, FormatsAnEntryWithItsLengthInDecimal) {
  EXPECT_EQ(formatIPv6Entry({"2001:db8::5", 64}), "2001:db8::5/64");
  EXPECT_EQ(formatIPv6Entry({"2001:DB8:0::5", 0}), "2001:DB8:0::5/0");
  EXPECT_EQ(formatIPv6Entry({"", 65535}), "/65535");
}

// How an edit ended, with its result as the exit status, and the new file.
using Edited = std::pair<Outcome, std::string>;

// Runs the edit in a child process to capture its messages. They end in the system error if errno
// is set at the start.
Edited edit(FileWriter writer, const std::string& address, std::queue<std::string> texts,
            int error = 0) {
  const TemporaryDirectory directory;
  const Outcome outcome = runInChild([&] {
    std::FILE* oldFile = openTexts(texts);
    std::FILE* newFile = std::fopen((directory / "new").c_str(), "w");
    LabelledAddress context{"eth0", {address, 64}};
    errno = error;
    const int result = writer(oldFile, newFile, &context);
    std::fclose(oldFile);
    std::fclose(newFile);
    std::exit(result);
  });
  return {outcome, readFile(directory / "new")};
}

std::queue<std::string> oneFile(const std::string& contents) {
  return contents.empty() ? std::queue<std::string>() : std::queue<std::string>({contents});
}

Edited adding(const std::string& contents, int error = 0) {
  return edit(copyWithIPv6, "2001:db8::5", oneFile(contents), error);
}

Edited removing(const std::string& address, const std::string& contents, int error = 0) {
  return edit(copyWithoutIPv6, address, oneFile(contents), error);
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

void expectUntouched(const std::string& address, const std::vector<std::string>& files) {
  for (const std::string& contents : files) expectRemoved(address, contents, contents);
}

void expectFailure(const Edited& edited, const std::string& message) {
  EXPECT_EQ(edited.first, onBothStreams(message, 255));
}

const std::string listKey = "IPV6ADDR_SECONDARIES=";

// The line that an edit writes.
std::string listOf(const std::string& entries) {
  return listKey + '"' + entries + "\"\n";
}

const std::string primary = "IPV6ADDR=2001:db8::1/64\n";
const std::string newList = listOf("2001:db8::5/64");

TEST(IPv6Adding, AFileWithoutAListGetsOneAtItsEnd) {
  expectAdded("", newList);
  expectAdded("DEVICE=eth0\n", "DEVICE=eth0\n" + newList);
  expectAdded(primary + "MTU=1500\n", primary + "MTU=1500\n" + newList);
  expectAdded("A=1\nB=2", "A=1\nB=2" + newList);  // no line feed is added to the last line
}

TEST(IPv6Adding, PutsTheAddressFirstInTheList) {
  expectAdded(listKey + "2001:db8::2/64\n", listOf("2001:db8::5/64 2001:db8::2/64"));
  expectAdded("A=1\n" + listKey + "2001:db8::2/64 2001:db8::3/48\nB=2\n",
              "A=1\n" + listOf("2001:db8::5/64 2001:db8::2/64 2001:db8::3/48") + "B=2\n");
  for (const std::string end : {"", "\r\n", " \n"}) {
    expectAdded(listKey + "2001:db8::2/64" + end, listOf("2001:db8::5/64 2001:db8::2/64"));
  }
  // The last entry of a quoted list loses its prefix length (required).
  expectAdded(listKey + "\"2001:db8::2/64\"\n", listOf("2001:db8::5/64 2001:db8::2/0"));
  expectAdded(listKey + "'2001:db8::3/64 2001:db8::2/64'\n",
              listOf("2001:db8::5/64 2001:db8::3/64 2001:db8::2/0"));
  // Addresses keep their spelling; prefix lengths are parsed.
  expectAdded(listKey + " 2001:DB8:0::2/+064   junk/x\t/1\n",
              listOf("2001:db8::5/64 2001:DB8:0::2/64 junk/0 /1"));
  // An address that is in the list already is listed twice.
  expectAdded("IPV6ADDR=2001:db8::5/64\n" + listKey + "2001:db8::5/64\n",
              "IPV6ADDR=2001:db8::5/64\n" + listOf("2001:db8::5/64 2001:db8::5/64"));
  // Empty lists beside another one are kept.
  expectAdded(listKey + "\n" + listKey + "a/1\n" + listKey + "''\n",
              listKey + "\n" + listOf("2001:db8::5/64 a/1") + listKey + "''\n");
  // A second list line repeats the text of the first (required).
  const std::string first = listOf("2001:db8::5/64 a/1");
  expectAdded(listKey + "a/1\nA=1\n" + listKey + "b/2\n", first + "A=1\n" + first + " b/2\"\n");
}

TEST(IPv6Adding, AnyKeyThatStartsWithTheNameOfTheListMatches) {
  expectAdded("IPV6ADDR_SECONDARIES_OLD=2001:db8::2/64\n", listOf("2001:db8::5/64 2001:db8::2/64"));
  expectAdded("IPV6ADDR_SECONDARIESX a=b/1\n", listOf("2001:db8::5/64 b/1"));
}

TEST(IPv6Adding, AnEmptyListIsKeptAndANewListIsAppended) {
  for (const std::string list :
       {"IPV6ADDR_SECONDARIES=\n", "IPV6ADDR_SECONDARIES=\"\"\n", "IPV6ADDR_SECONDARIES=''\n",
        "IPV6ADDR_SECONDARIES= \t\n", "IPV6ADDR_SECONDARIES\n", "IPV6ADDR_SECONDARIES_X=\n"}) {
    expectAdded(list + "A=1\n", list + "A=1\n" + newList);
  }
}

TEST(IPv6Adding, TheKeyMustStartTheLine) {
  for (const std::string line :
       {" IPV6ADDR_SECONDARIES=a/1\n", "#IPV6ADDR_SECONDARIES=a/1\n", "ipv6addr_secondaries=a/1\n",
        "IPV6ADDR_SECONDARIE=a/1\n", "IPV6ADDR=a\n", "export IPV6ADDR_SECONDARIES=a/1\n",
        "IPV6ADDR _SECONDARIES=a/1\n"}) {
    expectAdded(line, line + newList);
  }
}

TEST(IPv6Removing, ASecondaryLeavesTheList) {
  // The other secondaries keep their order.
  expectRemoved("2001:db8::2",
                primary + listKey + "2001:db8::3/64 2001:db8::2/48 2001:db8::4/56\nB=2\n",
                primary + listOf("2001:db8::3/64 2001:db8::4/56") + "B=2\n");
  expectRemoved("2001:db8::2", listKey + "2001:db8::3/64 2001:db8::2/64", listOf("2001:db8::3/64"));
  // With its last secondary the list is removed.
  expectRemoved("2001:db8::2",
                "IPV6ADDR='2001:db8::1/64'\n" + listKey + "\"2001:db8::2/64\"\nA=1\n",
                "IPV6ADDR='2001:db8::1/64'\nA=1\n");
  // Every copy is removed.
  expectRemoved("2001:db8::2", listKey + "2001:db8::2/64 2001:db8::3/64 2001:db8:0::2/48\n",
                listOf("2001:db8::3/64"));
  // Each list line becomes the merged list.
  const std::string merged = listOf("a/1 b/2");
  expectRemoved("2001:db8::2",
                listKey + "a/1 2001:db8::2/64\nA=1\n" + listKey + "\n" + listKey + "b/2\n",
                merged + "A=1\n" + merged + merged);
}

TEST(IPv6Removing, TheFirstSecondaryReplacesThePrimary) {
  expectRemoved("2001:db8::1", "A=1\n" + primary + listKey + "2001:db8::2/48 2001:db8::3/64\nB=2\n",
                "A=1\nIPV6ADDR=2001:db8::2/48\n" + listOf("2001:db8::3/64") + "B=2\n");
  expectRemoved("2001:db8::1", listKey + "2001:db8::2/48\nIPV6ADDR=\"2001:db8::1/64\"",
                "IPV6ADDR=2001:db8::2/48\n");
  expectRemoved("2001:db8::1", primary + listKey + "\"2001:db8::2/64\"\n",
                "IPV6ADDR=2001:db8::2/0\n");
  expectRemoved("2001:db8::1", "IPV6ADDR=2001:db8::1/64\r\n" + listKey + "a/1 b/2\r\n",
                "IPV6ADDR=a/1\n" + listOf("b/2"));
  // Even if it is the address being removed.
  expectRemoved("2001:db8::1", primary + listKey + "2001:db8::1/48 2001:DB8::1/56\n",
                "IPV6ADDR=2001:db8::1/48\n");
  expectRemoved("2001:db8::1", primary + listKey + "2001:db8::1/48 2001:db8::2/64 2001:db8::1/56\n",
                "IPV6ADDR=2001:db8::1/48\n" + listOf("2001:db8::2/64"));
}

TEST(IPv6Removing, AnySpellingOfTheAddressMatches) {
  for (const std::string address :
       {"2001:db8::2", "2001:DB8::2", "2001:0db8:0:0:0:0:0:0002", "2001:db8::0.0.0.2"}) {
    expectRemoved(address, listKey + "2001:db8::3/64 2001:db8::2/64\n", listOf("2001:db8::3/64"));
    expectRemoved(address, listKey + "2001:DB8:0::0:2/64 2001:DB8:0::3/64\n",
                  listOf("2001:DB8:0::3/64"));
    expectRemoved(address, "IPV6ADDR=2001:DB8::0:2/64\n" + listKey + "2001:db8::3/64\n",
                  "IPV6ADDR=2001:db8::3/64\n");
  }
}

TEST(IPv6Removing, QuotesBlanksAndPrefixLengthOfThePrimaryAreIgnored) {
  for (const std::string value :
       {"2001:db8::1/64\n", "2001:db8::1\n", "\"2001:db8::1/64\"\n", "'2001:db8::1/64'\n",
        " \t'\" 2001:db8::1 \"'\r\n", "\r2001:db8::1\t\n", "2001:db8::1/64/x\n", "2001:db8::1/\n",
        "2001:db8::1"}) {
    expectRemoved("2001:db8::1", listKey + "a/1\nIPV6ADDR=" + value, "IPV6ADDR=a/1\n");
  }
}

TEST(IPv6Removing, OnlyTheExactPrimaryMatches) {
  for (const std::string value :
       {"2001:db8::1 /64", "\"2001:db8::1\"/64", "2001:db8::1\f", "\v2001:db8::1",
        "2001:db8::1%eth0", "/2001:db8::1", "", "::1", "x2001:db8::1", "2001:db8::1x"}) {
    expectUntouched("2001:db8::1", {"IPV6ADDR=" + value + "\n"});
  }
}

TEST(IPv6Removing, TheLastPrimaryLineDecides) {
  expectRemoved("2001:db8::1", "IPV6ADDR=2001:db8::9/64\n" + listKey + "a/1\n" + primary,
                "IPV6ADDR=a/1\nIPV6ADDR=a/1\n");
  for (const std::string value : {"2001:db8::9/64", "", "\"\"", "#2001:db8::1"}) {
    expectUntouched("2001:db8::1", {primary + "IPV6ADDR=" + value + "\n"});
  }
}

TEST(IPv6Removing, AnUnknownAddressOnlyRewritesTheLists) {
  expectRemoved("2001:db8::7",
                "IPV6ADDR=\"2001:db8::1/64\"\n" + listKey + "'2001:DB8::2/064 a/64'\n",
                "IPV6ADDR=\"2001:db8::1/64\"\n" + listOf("2001:DB8::2/64 a/0"));
  expectRemoved("2001:db8::7", "A=1\n" + listKey + "\"\"\n", "A=1\n");
  expectUntouched("2001:db8::7", {"", "\n", "A=1\n" + primary});
}

TEST(IPv6Removing, TheWholeKeyMustStartTheLine) {
  expectUntouched("2001:db8::1",
                  {"IPV6ADDR_SECONDARIES_OLD=2001:db8::1/64\n", "IPV6ADDR_SECONDARIES\n",
                   "IPV6ADDR_SECONDARIES =2001:db8::1/64\n", " IPV6ADDR=2001:db8::1/64\n",
                   "#IPV6ADDR=2001:db8::1/64\n", "ipv6addr=2001:db8::1/64\n",
                   "IPV6ADDR =2001:db8::1/64\n", "IPV6ADDRESS=2001:db8::1/64\n"});
}

TEST(IPv6Removing, AnInvalidAddressMatchesNothing) {
  for (const std::string address : {"", "junk", "192.0.2.1", "2001:db8::g", "2001:db8:::1"}) {
    expectUntouched(address, {"IPV6ADDR=" + address + "/64\n"});
    expectRemoved(address, listKey + address + "/64 a/1\n", listOf(address + "/64 a/1"));
  }
  expectUntouched("2001:db8::1/64", {primary});
}

const std::string systemError2 = "System error 2: No such file or directory\n";

TEST(IPv6Edits, AMalformedListIsReportedWithTheErrorInErrno) {
  const std::string cannotParse = ": cannot parse IPv6 address\n";
  expectFailure(adding(listKey + "a/1 bad b/2\n"), "bad" + cannotParse);
  expectFailure(adding(listKey + "a/1\n" + listKey + "bad\n"), "bad" + cannotParse);
  expectFailure(adding(listKey + "%s%n\n"), "%s%n" + cannotParse);
  expectFailure(adding(listKey + "bad\n", ENOENT), "bad" + cannotParse + systemError2);
  // An earlier prefix length that is too large has set errno.
  expectFailure(adding(listKey + "a/65536 bad\n"),
                "bad" + cannotParse + "System error 34: Numerical result out of range\n");
  expectFailure(removing("2001:db8::1", listKey + "2001:db8::1/64 bad\n"), "bad" + cannotParse);
  expectFailure(removing("2001:db8::1", primary + listKey + "bad/1/2\n" + listKey + "bad\n"),
                "bad/1/2" + cannotParse);
}

TEST(IPv6Removing, ThePrimaryWithoutASecondaryIsReportedWithTheErrorInErrno) {
  const std::string message = "Cannot remove last IPv6 address 2001:DB8::1\n";
  for (const std::string list : {"", "IPV6ADDR_SECONDARIES=\n", "IPV6ADDR_SECONDARIES=\"\"\n",
                                 "IPV6ADDR_SECONDARIES_OLD=a/1\n"}) {
    EXPECT_EQ(removing("2001:DB8::1", primary + list), Edited(onBothStreams(message, 255), ""));
  }
  EXPECT_EQ(removing("2001:DB8::1", primary, ENOENT),
            Edited(onBothStreams(message + systemError2, 255), ""));
}

TEST(IPv6Edits, OtherLinesAreCopiedByteForByte) {
  std::string bytes;
  for (int byte = 0; byte < 256; ++byte) bytes += static_cast<char>(byte);
  const std::string lines = bytes + "\r\n\n  \n" + std::string(3, '\0') + "\n" + bytes + "\n";
  expectUntouched("2001:db8::1", {lines, lines + "no line feed", std::string(1, '\0')});
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
    expectUntouched("2001:db8::1", {filler + primary + filler + list});
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

// Edits a file that has a read error after the text.
Edited editUnreadable(FileWriter writer, const std::string& text) {
  return edit(writer, "2001:db8::5", std::queue<std::string>({text, ""}));
}

TEST(IPv6Edits, AReadErrorFailsSilently) {
  for (const FileWriter writer : {copyWithIPv6, copyWithoutIPv6}) {
    for (const std::string text : {"", "A=1\n", "A=1\nB", "IPV6ADDR=2001:db8::5/64\n",
                                   "IPV6ADDR_SECONDARIES=a/1\nIPV6ADDR_SECONDARIES=b/1 cut"}) {
      SCOPED_TRACE(text);
      expectFailure(editUnreadable(writer, text), "");
    }
  }
}

TEST(IPv6Edits, OnlyAnAddReportsABadListBeforeAReadError) {
  // An add parses each line as it is read; a removal reads the whole file first.
  expectFailure(editUnreadable(copyWithIPv6, listKey + "bad\n"),
                "bad: cannot parse IPv6 address\n");
  expectFailure(editUnreadable(copyWithoutIPv6, listKey + "bad\n"), "");
}

TEST(IPv6Edits, AWriteErrorIsIgnored) {
  for (const FileWriter writer : {copyWithIPv6, copyWithoutIPv6}) {
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
