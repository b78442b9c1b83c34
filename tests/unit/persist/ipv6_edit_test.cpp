// The two edits of the IPv6 lists, from one stream to another.
#include <gtest/gtest.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <ostream>
#include <queue>
#include <string>
#include <vector>

#include "persist/ipv6_list.h"
#include "persist/replace_file.h"
#include "support/child_process.h"
#include "support/files.h"

namespace addrtool::testing {
namespace {

// The result of an edit.
struct Edited {
  int result = 0;
  std::string contents;  // of the new file; ignored unless the result is 0
  std::string said;      // on each of the two output streams

  bool operator==(const Edited&) const = default;
};

void PrintTo(const Edited& edited, std::ostream* stream) {
  *stream << "result " << edited.result << ", said '" << edited.said << "'\n" << edited.contents;
}

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
    std::exit(result == -1 ? 1 : result);
  });
  EXPECT_EQ(outcome.out, outcome.err);
  EXPECT_EQ(outcome.signal, 0);
  return {outcome.exitStatus == 1 ? -1 : outcome.exitStatus, readFile(directory / "new"),
          outcome.err};
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

struct Row {
  std::string before;
  std::string after;
};

void expectAdded(const std::vector<Row>& table) {
  for (const auto& [before, after] : table) {
    EXPECT_EQ(adding(before), (Edited{0, after, ""})) << "for the file\n" << before;
  }
}

void expectRemoved(const std::string& address, const std::vector<Row>& table) {
  for (const auto& [before, after] : table) {
    EXPECT_EQ(removing(address, before), (Edited{0, after, ""}))
        << "without " << address << " for the file\n"
        << before;
  }
}

void expectUntouched(const std::string& address, const std::vector<std::string>& files) {
  for (const std::string& contents : files) expectRemoved(address, {{contents, contents}});
}

const std::string newList = "IPV6ADDR_SECONDARIES=\"2001:db8::5/64\"\n";

// --- adding ------------------------------------------------------------------

TEST(IPv6Adding, PutsTheAddressFirstInTheList) {
  expectAdded({
      // A file without a list gets one at its end.
      {"", newList},
      {"DEVICE=eth0\n", "DEVICE=eth0\n" + newList},
      {"IPV6ADDR=2001:db8::1/64\nMTU=1500\n", "IPV6ADDR=2001:db8::1/64\nMTU=1500\n" + newList},
      // The new address goes first.
      {"IPV6ADDR_SECONDARIES=2001:db8::2/64\n",
       "IPV6ADDR_SECONDARIES=\"2001:db8::5/64 2001:db8::2/64\"\n"},
      {"A=1\nIPV6ADDR_SECONDARIES=2001:db8::2/64 2001:db8::3/48\nB=2\n",
       "A=1\nIPV6ADDR_SECONDARIES=\"2001:db8::5/64 2001:db8::2/64 2001:db8::3/48\"\nB=2\n"},
      {"IPV6ADDR_SECONDARIES=2001:db8::2/64",  // without a line feed
       "IPV6ADDR_SECONDARIES=\"2001:db8::5/64 2001:db8::2/64\"\n"},
      // The last entry of a quoted list loses its prefix length (required).
      {"IPV6ADDR_SECONDARIES=\"2001:db8::2/64\"\n",
       "IPV6ADDR_SECONDARIES=\"2001:db8::5/64 2001:db8::2/0\"\n"},
      {"IPV6ADDR_SECONDARIES='2001:db8::3/64 2001:db8::2/64'\n",
       "IPV6ADDR_SECONDARIES=\"2001:db8::5/64 2001:db8::3/64 2001:db8::2/0\"\n"},
      // Addresses keep their spelling; prefix lengths are parsed.
      {"IPV6ADDR_SECONDARIES= 2001:DB8:0::2/+064   junk/x\t/1\n",
       "IPV6ADDR_SECONDARIES=\"2001:db8::5/64 2001:DB8:0::2/64 junk/0 /1\"\n"},
      // An address that is in the list already is listed twice.
      {"IPV6ADDR=2001:db8::5/64\nIPV6ADDR_SECONDARIES=2001:db8::5/64\n",
       "IPV6ADDR=2001:db8::5/64\n"
       "IPV6ADDR_SECONDARIES=\"2001:db8::5/64 2001:db8::5/64\"\n"},
      // Empty lists beside another one are kept.
      {"IPV6ADDR_SECONDARIES=\nIPV6ADDR_SECONDARIES=a/1\nIPV6ADDR_SECONDARIES=''\n",
       "IPV6ADDR_SECONDARIES=\n"
       "IPV6ADDR_SECONDARIES=\"2001:db8::5/64 a/1\"\n"
       "IPV6ADDR_SECONDARIES=''\n"},
      // A second list line repeats the text of the first (required).
      {"IPV6ADDR_SECONDARIES=a/1\nA=1\nIPV6ADDR_SECONDARIES=b/2\n",
       "IPV6ADDR_SECONDARIES=\"2001:db8::5/64 a/1\"\n"
       "A=1\n"
       "IPV6ADDR_SECONDARIES=\"2001:db8::5/64 a/1\"\n b/2\"\n"},
      // Any key that starts with the name of the list matches.
      {"IPV6ADDR_SECONDARIES_OLD=2001:db8::2/64\n",
       "IPV6ADDR_SECONDARIES=\"2001:db8::5/64 2001:db8::2/64\"\n"},
      {"IPV6ADDR_SECONDARIESX a=b/1\n", "IPV6ADDR_SECONDARIES=\"2001:db8::5/64 b/1\"\n"},
      // A last line without a line feed does not get one.
      {"A=1\nB=2", "A=1\nB=2IPV6ADDR_SECONDARIES=\"2001:db8::5/64\"\n"},
  });
}

TEST(IPv6Adding, AnEmptyListIsKeptAndANewListIsAppended) {
  for (const std::string list :
       {"IPV6ADDR_SECONDARIES=\n", "IPV6ADDR_SECONDARIES=\"\"\n", "IPV6ADDR_SECONDARIES=''\n",
        "IPV6ADDR_SECONDARIES= \t\n", "IPV6ADDR_SECONDARIES\n", "IPV6ADDR_SECONDARIES_X=\n"}) {
    expectAdded({{list + "A=1\n", list + "A=1\n" + newList}});
  }
}

TEST(IPv6Adding, TheKeyMustStartTheLine) {
  for (const std::string line :
       {" IPV6ADDR_SECONDARIES=a/1\n", "#IPV6ADDR_SECONDARIES=a/1\n", "ipv6addr_secondaries=a/1\n",
        "IPV6ADDR_SECONDARIE=a/1\n", "IPV6ADDR=a\n", "export IPV6ADDR_SECONDARIES=a/1\n",
        "IPV6ADDR _SECONDARIES=a/1\n"}) {
    expectAdded({{line, line + newList}});
  }
}

// --- removing ----------------------------------------------------------------

TEST(IPv6Removing, RemovesFromTheListOrReplacesThePrimary) {
  const std::vector<std::pair<std::string, std::vector<Row>>> table{
      // The other secondaries keep their order.
      {"2001:db8::2",
       {{"IPV6ADDR=2001:db8::1/64\n"
         "IPV6ADDR_SECONDARIES=2001:db8::3/64 2001:db8::2/48 2001:db8::4/56\nB=2\n",
         "IPV6ADDR=2001:db8::1/64\n"
         "IPV6ADDR_SECONDARIES=\"2001:db8::3/64 2001:db8::4/56\"\nB=2\n"},
        {"IPV6ADDR_SECONDARIES=2001:db8::3/64 2001:db8::2/64",
         "IPV6ADDR_SECONDARIES=\"2001:db8::3/64\"\n"}}},
      // With its last secondary the list is removed.
      {"2001:db8::2",
       {{"IPV6ADDR='2001:db8::1/64'\nIPV6ADDR_SECONDARIES=\"2001:db8::2/64\"\nA=1\n",
         "IPV6ADDR='2001:db8::1/64'\nA=1\n"}}},
      // Every copy of a secondary is removed.
      {"2001:db8::2",
       {{"IPV6ADDR_SECONDARIES=2001:db8::2/64 2001:db8::3/64 2001:db8:0::2/48\n",
         "IPV6ADDR_SECONDARIES=\"2001:db8::3/64\"\n"}}},
      // The first secondary replaces the primary.
      {"2001:db8::1",
       {{"A=1\nIPV6ADDR=2001:db8::1/64\nIPV6ADDR_SECONDARIES=2001:db8::2/48 "
         "2001:db8::3/64\nB=2\n",
         "A=1\nIPV6ADDR=2001:db8::2/48\nIPV6ADDR_SECONDARIES=\"2001:db8::3/64\"\nB=2\n"},
        {"IPV6ADDR_SECONDARIES=2001:db8::2/48\nIPV6ADDR=\"2001:db8::1/64\"",
         "IPV6ADDR=2001:db8::2/48\n"},
        {"IPV6ADDR=2001:db8::1/64\nIPV6ADDR_SECONDARIES=\"2001:db8::2/64\"\n",
         "IPV6ADDR=2001:db8::2/0\n"}}},
      // The promoted secondary is kept even if it is the address being removed.
      {"2001:db8::1",
       {{"IPV6ADDR=2001:db8::1/64\n"
         "IPV6ADDR_SECONDARIES=2001:db8::1/48 2001:db8::2/64 2001:db8::1/56\n",
         "IPV6ADDR=2001:db8::1/48\nIPV6ADDR_SECONDARIES=\"2001:db8::2/64\"\n"}}},
      // Each list line becomes the merged list.
      {"2001:db8::2",
       {{"IPV6ADDR_SECONDARIES=a/1 2001:db8::2/64\nA=1\n"
         "IPV6ADDR_SECONDARIES=\nIPV6ADDR_SECONDARIES=b/2\n",
         "IPV6ADDR_SECONDARIES=\"a/1 b/2\"\nA=1\n"
         "IPV6ADDR_SECONDARIES=\"a/1 b/2\"\n"
         "IPV6ADDR_SECONDARIES=\"a/1 b/2\"\n"}}},
  };
  for (const auto& [address, files] : table) expectRemoved(address, files);
}

TEST(IPv6Removing, AnySpellingOfTheAddressMatches) {
  for (const std::string address :
       {"2001:db8::2", "2001:DB8::2", "2001:0db8:0:0:0:0:0:0002", "2001:db8::0.0.0.2"}) {
    expectRemoved(address, {{"IPV6ADDR_SECONDARIES=2001:db8::3/64 2001:db8::2/64\n",
                             "IPV6ADDR_SECONDARIES=\"2001:db8::3/64\"\n"},
                            {"IPV6ADDR_SECONDARIES=2001:DB8:0::0:2/64 2001:DB8:0::3/64\n",
                             "IPV6ADDR_SECONDARIES=\"2001:DB8:0::3/64\"\n"},
                            {"IPV6ADDR=2001:DB8::0:2/64\nIPV6ADDR_SECONDARIES=2001:db8::3/64\n",
                             "IPV6ADDR=2001:db8::3/64\n"}});
  }
}

TEST(IPv6Removing, QuotesBlanksAndPrefixLengthOfThePrimaryAreIgnored) {
  for (const std::string value :
       {"2001:db8::1/64\n", "2001:db8::1\n", "\"2001:db8::1/64\"\n", "'2001:db8::1/64'\n",
        " \t'\" 2001:db8::1 \"'\r\n", "\r2001:db8::1\t\n", "2001:db8::1/64/x\n", "2001:db8::1/\n",
        "2001:db8::1"}) {
    expectRemoved("2001:db8::1",
                  {{"IPV6ADDR_SECONDARIES=a/1\nIPV6ADDR=" + value, "IPV6ADDR=a/1\n"}});
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
  expectRemoved("2001:db8::1",
                {{"IPV6ADDR=2001:db8::9/64\nIPV6ADDR_SECONDARIES=a/1\nIPV6ADDR=2001:db8::1/64\n",
                  "IPV6ADDR=a/1\nIPV6ADDR=a/1\n"}});
  expectUntouched("2001:db8::1", {"IPV6ADDR=2001:db8::1/64\nIPV6ADDR=2001:db8::9/64\n"});
}

TEST(IPv6Removing, AnUnknownAddressOnlyRewritesTheLists) {
  expectRemoved("2001:db8::7",
                {{"IPV6ADDR=\"2001:db8::1/64\"\nIPV6ADDR_SECONDARIES='2001:DB8::2/064 a/64'\n",
                  "IPV6ADDR=\"2001:db8::1/64\"\nIPV6ADDR_SECONDARIES=\"2001:DB8::2/64 a/0\"\n"},
                 {"A=1\nIPV6ADDR_SECONDARIES=\"\"\n", "A=1\n"}});
  expectUntouched("2001:db8::7", {"", "\n", "A=1\nIPV6ADDR=2001:db8::1/64\n"});
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
    expectRemoved(address, {{"IPV6ADDR_SECONDARIES=" + address + "/64 a/1\n",
                             "IPV6ADDR_SECONDARIES=\"" + address + "/64 a/1\"\n"}});
  }
  expectUntouched("2001:db8::1/64", {"IPV6ADDR=2001:db8::1/64\n"});
}

// --- both --------------------------------------------------------------------

TEST(IPv6Edits, AFailureIsReportedWithTheErrorInErrno) {
  const std::string key = "IPV6ADDR_SECONDARIES";
  const std::string primary = "IPV6ADDR=2001:db8::1/64\n";
  const std::string cannotParse = ": cannot parse IPv6 address\n";
  const std::string isLast = "Cannot remove last IPv6 address 2001:DB8::1\n";
  const std::string missing = "System error 2: No such file or directory\n";
  const std::vector<std::pair<Edited, std::string>> table{
      {adding(key + "=a/1 bad b/2\n"), "bad" + cannotParse},
      {adding(key + "=a/1\n" + key + "=bad\n"), "bad" + cannotParse},
      {adding(key + "=%s%n\n"), "%s%n" + cannotParse},
      {adding(key + "=bad\n", ENOENT), "bad" + cannotParse + missing},
      // An earlier prefix length that is too large has set errno.
      {adding(key + "=a/65536 bad\n"),
       "bad" + cannotParse + "System error 34: Numerical result out of range\n"},
      {removing("2001:db8::1", key + "=2001:db8::1/64 bad\n"), "bad" + cannotParse},
      {removing("2001:db8::1", primary + key + "=bad/1/2\n" + key + "=bad\n"),
       "bad/1/2" + cannotParse},
      {removing("2001:DB8::1", primary), isLast},
      {removing("2001:DB8::1", primary + key + "=\n"), isLast},
      {removing("2001:DB8::1", primary + key + "=\"\"\n"), isLast},
      {removing("2001:DB8::1", primary + key + "_OLD=a/1\n"), isLast},
      {removing("2001:DB8::1", primary, ENOENT), isLast + missing},
  };
  for (const auto& [edited, said] : table) {
    EXPECT_EQ(edited.result, -1);
    EXPECT_EQ(edited.said, said);
    EXPECT_TRUE(edited.contents.empty() || !said.starts_with("Cannot")) << edited.contents;
  }
}

TEST(IPv6Edits, OtherLinesAreCopiedByteForByte) {
  std::string bytes;
  for (int byte = 0; byte < 256; ++byte) bytes += static_cast<char>(byte);
  const std::string lines = bytes + "\r\n\n  \n" + std::string(3, '\0') + "\n" + bytes + "\n";
  expectUntouched("2001:db8::1", {lines, lines + "no line feed", std::string(1, '\0')});
  expectAdded({{lines, lines + newList}});
}

TEST(IPv6Edits, ALongLineIsReadInPiecesOf8095Bytes) {
  const std::string list = "IPV6ADDR_SECONDARIES=a/1\n";
  const std::string extendedList = "IPV6ADDR_SECONDARIES=\"2001:db8::5/64 a/1\"\n";
  for (const std::size_t length : {8095U, 2 * 8095U}) {
    const std::string filler(length, 'x');
    expectAdded({{filler + list, filler + extendedList}});
    expectRemoved("2001:db8::1",
                  {{filler + "IPV6ADDR=2001:db8::1/64\n" + list, filler + "IPV6ADDR=a/1\n"}});
  }
  for (const std::size_t length : {8094U, 8096U, 2 * 8095U - 1}) {
    const std::string filler(length, 'x');
    expectAdded({{filler + list, filler + list + newList}});
    expectUntouched("2001:db8::1", {filler + "IPV6ADDR=2001:db8::1/64\n" + filler + list});
  }
}

TEST(IPv6Edits, TheLineFeedCountsAsPartOfThePiece) {
  const std::string line = std::string(8094, 'x') + '\n';  // exactly one piece
  expectAdded({{line + "IPV6ADDR_SECONDARIES=a/1\n",
                line + "IPV6ADDR_SECONDARIES=\"2001:db8::5/64 a/1\"\n"}});
}

TEST(IPv6Edits, AListLongerThanAPieceIsSplit) {
  std::string piece = "IPV6ADDR_SECONDARIES=2001:db8::2/64";
  piece.resize(8095, ' ');
  expectAdded({{piece + "2001:db8::3/64\nA=1\n",
                "IPV6ADDR_SECONDARIES=\"2001:db8::5/64 2001:db8::2/64\"\n2001:db8::3/64\nA=1\n"}});

  piece.replace(8095 - 4, 4, "2001");
  for (const Edited& edited :
       {adding(piece + ":db8::3/64\n"), removing("2001:db8::2", piece + ":db8::3/64\n")}) {
    EXPECT_EQ(edited, (Edited{-1, "", "2001: cannot parse IPv6 address\n"}));
  }
}

// Expects that the edit fails with this message at a read error after the text.
void expectReadError(FileWriter writer, const std::string& text, const std::string& message = "") {
  const Edited edited = edit(writer, "2001:db8::5", std::queue<std::string>({text, ""}));
  EXPECT_EQ(edited.result, -1) << text;
  EXPECT_EQ(edited.said, message) << text;
}

TEST(IPv6Edits, AReadErrorFailsSilently) {
  for (const FileWriter writer : {copyWithIPv6, copyWithoutIPv6}) {
    for (const std::string text : {"", "A=1\n", "A=1\nB", "IPV6ADDR=2001:db8::5/64\n",
                                   "IPV6ADDR_SECONDARIES=a/1\nIPV6ADDR_SECONDARIES=b/1 cut"}) {
      expectReadError(writer, text);
    }
  }
}

TEST(IPv6Edits, OnlyAnAddReportsABadListBeforeAReadError) {
  // An add parses each line as it is read; a removal reads the whole file first.
  const std::string text = "IPV6ADDR_SECONDARIES=bad\n";
  expectReadError(copyWithIPv6, text, "bad: cannot parse IPv6 address\n");
  expectReadError(copyWithoutIPv6, text);
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
