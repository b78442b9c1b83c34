#include "container/container_check.h"

#include <gtest/gtest.h>

#include <deque>
#include <memory>

#include "support/failing_call.h"
#include "support/files.h"

namespace addrtool::testing {
namespace {

using File = std::unique_ptr<std::FILE, int (*)(std::FILE*)>;

File openFile(const std::string& path) {
  return {std::fopen(path.c_str(), "r"), std::fclose};
}

// Searches each of the texts for the address.
void expectFound(bool isFound, const std::string& address, const std::vector<std::string>& texts) {
  const TemporaryDirectory directory;
  for (const std::string& text : texts) {
    writeFile(directory / "veinfo", text);
    EXPECT_EQ(anyLineHolds(openFile(directory / "veinfo").get(), address), isFound)
        << address << " in \"" << text << '"';
  }
}

TEST(AnyLineHolds, FindsTheTextAnywhereInAnyLine) {
  using namespace std::string_literals;
  const std::string longText(1000000, 'x');
  expectFound(true, "10.0.0.1",
              {"10.0.0.1\n", "10.0.0.1", "   101 0 2 10.0.0.1 10.0.0.2\n",
               "first\n\n\nlast 10.0.0.1", "10.0.0.12\n", "110.0.0.1\n", "10.0.0.10.0.0.1\n",
               "a\0b 10.0.0.1\n"s, longText + "10.0.0.1" + longText});
  expectFound(true, "2001:db8::1", {"2001:db8::10\n"});
  expectFound(true, " ", {"a b\n"});
  expectFound(true, "\r", {"a\r\n"});
}

TEST(AnyLineHolds, ComparesBytes) {
  expectFound(false, "10.0.0.1",
              {"", "\n\n", "10.0.0.2\n10.0.0.3\n", "10.0.0.\n1\n", "10.0.0.01\n", "10x0y0z1\n"});
  expectFound(false, " 10.0.0.1", {"10.0.0.1"});
  expectFound(false, "2001:db8::1", {"2001:DB8::1\n", "2001:db8:0::1\n"});
}

TEST(AnyLineHolds, TheNewlineIsNotPartOfTheLine) {
  expectFound(false, "10.0.0.1\n", {"10.0.0.1\n"});
  expectFound(false, "a\nb", {"a\nb\n"});
  expectFound(false, "\n", {"\n\n"});
}

TEST(AnyLineHolds, TheEmptyTextIsFoundEvenInAnEmptyFile) {
  expectFound(true, "", {"", "\n", "10.0.0.1\n"});
  EXPECT_TRUE(anyLineHolds(openFile("/").get(), "")) << "which cannot be read";
}

TEST(AnyLineHolds, AReadErrorEndsTheSearch) {
  EXPECT_FALSE(anyLineHolds(openFile("/").get(), "10.0.0.1"));

  std::queue<std::string> texts(std::deque<std::string>{"first\nsec", "", "10.0.0.1\n"});
  EXPECT_FALSE(anyLineHolds(File(openTexts(texts), std::fclose).get(), "10.0.0.1"));
  EXPECT_EQ(texts.size(), 1U) << "nothing is read after the error";
}

TEST(AnyLineHolds, TheStartOfALineBeforeAReadErrorIsSearched) {
  std::queue<std::string> texts(std::deque<std::string>{"first\n10.0.0.1", ""});
  EXPECT_TRUE(anyLineHolds(File(openTexts(texts), std::fclose).get(), "10.0.0.1"));
}

TEST(AnyLineHolds, OutOfMemoryEndsTheSearch) {
  const TemporaryDirectory directory;
  writeFile(directory / "veinfo", "10.0.0.1\n10.0.0.2\n");
  for (const auto& [address, isFound] : {std::pair("10.0.0.1", true), {"10.0.0.2", false}}) {
    const File file = openFile(directory / "veinfo");
    const FailingAllocations failing(2);
    EXPECT_EQ(anyLineHolds(file.get(), address), isFound) << address;
  }
}

}  // namespace
}  // namespace addrtool::testing
