// Fuzzes the parsers of numbers, netmasks and addresses. The input is the text. Its
// first and last line are two addresses.
#include <cerrno>

#include "fuzzing.h"
#include "inventory/address_record.h"
#include "runtime/parse_unsigned16.h"

namespace addrtool::fuzz {
namespace {

void checkNumber(const std::string& text) {
  constexpr std::uint16_t untouched = 54321;
  std::uint16_t value = untouched;
  errno = 0;
  const int result = parseUnsigned16(text.c_str(), &value);
  const int error = errno;
  const ModelNumber expected = modelUnsigned16(text);
  require(result == (expected.value ? 0 : -1), "a number is taken exactly when it is one");
  require(value == expected.value.value_or(untouched),
          "a number has its value, or stays untouched");
  require(error == (expected.isOutOfRange ? ERANGE : 0), "errno tells of numbers above 65535 only");
}

void checkNetmaskOf(std::uint16_t prefixLength) {
  const std::string netmask = prefixToNetmask({"192.0.2.1", prefixLength});
  require(netmask == modelNetmask(prefixLength), "a prefix length gives its contiguous netmask");
  const std::uint16_t expected = prefixLength % 32 == 0 ? 32 : prefixLength % 32;
  require(netmaskToPrefix(netmask) == expected, "a derived netmask leads back to its length");
}

void checkNetmask(const std::string& text) {
  const std::optional<std::uint32_t> bits = modelDottedQuad(text);
  std::uint16_t prefixLength = 0;
  const auto failure = failureOf([&] { prefixLength = netmaskToPrefix(text); });
  require(failure.has_value() != bits.has_value(), "a netmask is a dotted quad");
  require(!failure || *failure == text + ": cannot convert to netmask",
          "the message names the text");
  if (!bits) return;
  require(prefixLength == modelPrefixLength(*bits), "the lowest set bit gives the length");
  checkNetmaskOf(prefixLength);
}

}  // namespace

int checkInput(Octets input) {
  const std::string text = upToNul({input.begin(), input.end()});
  checkNumber(text);
  checkNetmask(text);
  if (const auto length = modelUnsigned16(text).value) checkNetmaskOf(*length);

  const auto lines = splitAt(text, '\n');
  const std::string& one = lines.front();
  const std::string& other = lines.back();
  require(isSameIPv6Address(one, other) == modelSameIPv6(one, other),
          "two texts that print alike are one address");
  require(isSameIPv6Address(one, one) == modelSameIPv6(one, one),
          "only an address is the same as itself");
  return 0;
}

}  // namespace addrtool::fuzz
