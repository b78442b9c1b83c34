// Transcripts test the files themselves.
#include "persist/alias_file.h"

#include <gtest/gtest.h>

#include "support/failing_call.h"

namespace addrtool::testing {
namespace {

TEST(AliasFile, LooksForTheSuseReleaseEachTime) {
  LabelledAddress alias{"eth0:1", {"192.0.2.10", 24}};
  std::FILE* const file = std::fopen("/dev/null", "w");
  const FailingCall counted(Call::Stat, ENOENT);
  writeAliasContent(nullptr, file, &alias);
  writeAliasContent(nullptr, file, &alias);
  EXPECT_EQ(FailingCall::calls(), 2);
  std::fclose(file);
}

}  // namespace
}  // namespace addrtool::testing
