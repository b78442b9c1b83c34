#include "container/container_check.h"

#include <gtest/gtest.h>

#include <memory>

#include "support/failing_call.h"
#include "support/files.h"

namespace addrtool::testing {
namespace {

using File = std::unique_ptr<std::FILE, int (*)(std::FILE*)>;

// Transcripts search whole files. Here, the texts are read one after the other, and an empty one is
// a read error.
void expectFound(bool isFound, const std::string& address, std::queue<std::string> texts,
                 std::size_t left = 0) {
  EXPECT_EQ(anyLineHolds(File(openTexts(texts), std::fclose).get(), address), isFound) << address;
  EXPECT_EQ(texts.size(), left) << address;
}

TEST(AnyLineHolds, AReadErrorEndsTheSearch) {
  expectFound(false, "10.0.0.1", std::queue<std::string>({"first\nsec", "", "10.0.0.1\n"}), 1);
  expectFound(false, "10.0.0.1", std::queue<std::string>({"10.0.0.", "", "1\n"}), 1);
}

TEST(AnyLineHolds, AnEmptyTextIsFoundAfterARead) {
  expectFound(true, "", std::queue<std::string>({"", "10.0.0.1\n"}), 1);
}

TEST(AnyLineHolds, TheStartOfALineBeforeAReadErrorIsSearched) {
  expectFound(true, "10.0.0.1", std::queue<std::string>({"first\n10.0.0.1", ""}));
}

TEST(AnyLineHolds, NothingIsReadAfterTheTextIsFound) {
  expectFound(true, "10.0.0.1", std::queue<std::string>({"10.0.0.1\n", "10.0.0.1\n"}), 1);
  expectFound(true, "", std::queue<std::string>({"10.0.0.1\n", "10.0.0.1\n"}), 1);
}

TEST(AnyLineHolds, OutOfMemoryEndsTheSearch) {
  const TemporaryDirectory directory;
  writeFile(directory / "veinfo", "10.0.0.1\n10.0.0.2\n");
  for (const auto& [address, isFound] : {std::pair("10.0.0.1", true), {"10.0.0.2", false}}) {
    const File file(std::fopen((directory / "veinfo").c_str(), "r"), std::fclose);
    const FailingAllocations failing(2);
    EXPECT_EQ(anyLineHolds(file.get(), address), isFound) << address;
  }
}

}  // namespace
}  // namespace addrtool::testing
