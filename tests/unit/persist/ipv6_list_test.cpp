#include "persist/ipv6_list.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "support/child_process.h"
#include "support/printers.h"

namespace addrtool::testing {
namespace {

using Entries = std::vector<AddressRecord>;

TEST(IPv6List, IsParsedEntryByEntry) {
  const AddressRecord first{"2001:db8::2", 64};
  const AddressRecord second{"2001:db8::3", 48};
  const Entries cutFirst{{"2001:db8::2", 0}};
  const Entries cutLast{first, {"2001:db8::3", 0}};
  const std::vector<std::pair<std::string, Entries>> table{
      // The list is the text after the equals sign, split at white space.
      {"K=2001:db8::2/64", {first}},
      {"K=2001:db8::2/64\n", {first}},
      {"K=2001:db8::2/64 2001:db8::3/48\n", {first, second}},
      {"K= \t2001:db8::2/64\v \f2001:db8::3/48\r\n", {first, second}},
      {"=2001:db8::2/64\n", {first}},
      // Without a value it is empty.
      {"", {}},
      {"\n", {}},
      {"K\n", {}},
      {"2001:db8::2/64\n", {}},
      {"K=", {}},
      {"K=\n", {}},
      {"K= \t\n", {}},
      {"K=\"\"", {}},
      {"K=''\n", {}},
      {"K=\"\"\"''\n", {}},
      // With a closing quote the last entry loses its prefix length (required).
      {"K=\"2001:db8::2/64\"\n", cutFirst},
      {"K='2001:db8::2/64'\n", cutFirst},
      {"K=\"2001:db8::2/64\"", cutFirst},
      {"K=\"2001:db8::2/64 2001:db8::3/64\"\n", cutLast},
      {"K=\"'\"2001:db8::2/64 2001:db8::3/64'\"\n", cutLast},
      {"K=\"2001:db8::2/64\n", {first}},
      {"K=''\"2001:db8::2/64\n", {first}},
      // Required: the length of the value is the position of its end in the line. That is too long
      // unless there is no key.
      {"=2001:db8::2/64\"", {first}},
      // Addresses stay as they are written.
      {"K=2001:DB8:0:0::1/64 junk/7 192.0.2.1/24 /8 a=b/9\n",
       {{"2001:DB8:0:0::1", 64}, {"junk", 7}, {"192.0.2.1", 24}, {"", 8}, {"a=b", 9}}},
      {"K=x/7\n", {{"x", 7}}},
      // An invalid prefix length is 0.
      {"K=a/0 b/ c/64x d/-1 e/65536 f/x g/'64' h/0x40\n",
       {{"a", 0}, {"b", 0}, {"c", 0}, {"d", 0}, {"e", 0}, {"f", 0}, {"g", 0}, {"h", 0}}},
      {"K=a/65535 b/+64 c/0064 d/129\n", {{"a", 65535}, {"b", 64}, {"c", 64}, {"d", 129}}},
  };
  for (const auto& [line, expected] : table) {
    Entries entries;
    parseIPv6List(line, entries);
    EXPECT_EQ(entries, expected) << "for the line '" << line << "'";
  }
}

TEST(IPv6List, IsAppendedToWhatIsThere) {
  Entries entries{{"2001:db8::1", 64}};
  parseIPv6List("K=2001:db8::2/64\n", entries);
  parseIPv6List("K=2001:db8::2/64\n", entries);
  EXPECT_EQ(entries, (Entries{{"2001:db8::1", 64}, {"2001:db8::2", 64}, {"2001:db8::2", 64}}));
}

TEST(IPv6List, AnEntryNeedsExactlyOneSlash) {
  const std::vector<std::pair<std::string, std::string>> table{
      {"K=2001:db8::2\n", "2001:db8::2"},
      {"K=a/1 2001:db8::2 b/2\n", "2001:db8::2"},
      {"K=2001:db8::2//64\n", "2001:db8::2//64"},
      {"K=2001:db8::2/64/\n", "2001:db8::2/64/"},
      {"K=//\n", "//"},
      {"K=2001:db8::2/ 64\n", "64"},
      {"K=\"2001:db8::2/64 \"\n", "\""},
      {"K='2001:db8::2/64 '\n", "'"},
      {"K= \"\"\n", "\"\""},
      {"K=\"2001:db8::2\"\n", "2001:db8::2\""},
  };
  for (const auto& [line, token] : table) {
    Entries entries;
    EXPECT_EQ(failureOf([&, &text = line] { parseIPv6List(text, entries); }),
              token + ": cannot parse IPv6 address");
  }
}

TEST(IPv6List, FormatsAnEntryWithItsLengthInDecimal) {
  EXPECT_EQ(formatIPv6Entry({"2001:db8::5", 64}), "2001:db8::5/64");
  EXPECT_EQ(formatIPv6Entry({"2001:DB8:0::5", 0}), "2001:DB8:0::5/0");
  EXPECT_EQ(formatIPv6Entry({"", 65535}), "/65535");
}

}  // namespace
}  // namespace addrtool::testing
