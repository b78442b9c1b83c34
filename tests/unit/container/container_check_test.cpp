#include "container/container_check.h"

#include <gtest/gtest.h>

#include <deque>
#include <memory>
#include <queue>
#include <string>
#include <vector>

#include "support/failing_call.h"
#include "support/files.h"

namespace addrtool::testing {
namespace {

using File = std::unique_ptr<std::FILE, int (*)(std::FILE*)>;

bool anyLineOfTextHolds(const std::string& text, const std::string& address) {
  const TemporaryDirectory directory;
  writeFile(directory / "veinfo", text);
  const File file(std::fopen((directory / "veinfo").c_str(), "r"), std::fclose);
  return anyLineHolds(file.get(), address);
}

struct Row {
  std::string text;
  std::string address;
};

TEST(AnyLineHolds, FindsTheTextAnywhereInAnyLine) {
  using namespace std::string_literals;
  const std::vector<Row> table{
      {"10.0.0.1\n", "10.0.0.1"},
      {"10.0.0.1", "10.0.0.1"},
      {"   101 0 2 10.0.0.1 10.0.0.2\n", "10.0.0.1"},
      {"first\n\n\nlast 10.0.0.1", "10.0.0.1"},
      {"10.0.0.12\n", "10.0.0.1"},
      {"110.0.0.1\n", "10.0.0.1"},
      {"2001:db8::10\n", "2001:db8::1"},
      {"10.0.0.10.0.0.1\n", "10.0.0.1"},
      {"a b\n", " "},
      {"a\0b 10.0.0.1\n"s, "10.0.0.1"},
      {"a\r\n", "\r"},
      {std::string(1000000, 'x') + "10.0.0.1" + std::string(1000000, 'x'), "10.0.0.1"},
  };
  for (const auto& [text, address] : table) {
    EXPECT_TRUE(anyLineOfTextHolds(text, address)) << address << " in \"" << text << '"';
  }
}

TEST(AnyLineHolds, ComparesBytes) {
  const std::vector<Row> table{
      {"", "10.0.0.1"},
      {"\n\n", "10.0.0.1"},
      {"10.0.0.2\n10.0.0.3\n", "10.0.0.1"},
      {"10.0.0.\n1\n", "10.0.0.1"},
      {"2001:DB8::1\n", "2001:db8::1"},
      {"2001:db8:0::1\n", "2001:db8::1"},
      {"10.0.0.01\n", "10.0.0.1"},
      {"10.0.0.1", " 10.0.0.1"},
      {"10x0y0z1\n", "10.0.0.1"},
  };
  for (const auto& [text, address] : table) {
    EXPECT_FALSE(anyLineOfTextHolds(text, address)) << address << " in \"" << text << '"';
  }
}

TEST(AnyLineHolds, TheNewlineIsNotPartOfTheLine) {
  EXPECT_FALSE(anyLineOfTextHolds("10.0.0.1\n", "10.0.0.1\n"));
  EXPECT_FALSE(anyLineOfTextHolds("a\nb\n", "a\nb"));
  EXPECT_FALSE(anyLineOfTextHolds("\n\n", "\n"));
}

TEST(AnyLineHolds, TheEmptyTextIsFoundEvenInAnEmptyFile) {
  for (const std::string text : {"", "\n", "10.0.0.1\n"}) {
    EXPECT_TRUE(anyLineOfTextHolds(text, ""));
  }
  const File directory(std::fopen("/", "r"), std::fclose);
  EXPECT_TRUE(anyLineHolds(directory.get(), ""));
}

TEST(AnyLineHolds, AReadErrorEndsTheSearch) {
  const File directory(std::fopen("/", "r"), std::fclose);
  EXPECT_FALSE(anyLineHolds(directory.get(), "10.0.0.1"));
}

TEST(AnyLineHolds, AReadErrorBehindTheFirstLineEndsTheSearch) {
  std::queue<std::string> texts(std::deque<std::string>{"first\nsec", "", "10.0.0.1\n"});
  const File file(openTexts(texts), std::fclose);
  EXPECT_FALSE(anyLineHolds(file.get(), "10.0.0.1"));
  EXPECT_EQ(texts.size(), 1U) << "nothing is read after the error";
}

TEST(AnyLineHolds, TheStartOfALineBeforeAReadErrorIsSearched) {
  std::queue<std::string> texts(std::deque<std::string>{"first\n10.0.0.1", ""});
  const File file(openTexts(texts), std::fclose);
  EXPECT_TRUE(anyLineHolds(file.get(), "10.0.0.1"));
}

TEST(AnyLineHolds, OutOfMemoryEndsTheSearch) {
  const TemporaryDirectory directory;
  writeFile(directory / "veinfo", "10.0.0.1\n10.0.0.2\n");
  for (const auto& [address, found] : {std::pair("10.0.0.1", true), std::pair("10.0.0.2", false)}) {
    const File file(std::fopen((directory / "veinfo").c_str(), "r"), std::fclose);
    const FailingAllocations failing(2);
    EXPECT_EQ(anyLineHolds(file.get(), address), found) << address;
  }
}

}  // namespace
}  // namespace addrtool::testing
