// Fuzzes the parsers of numbers, netmasks and addresses. The input is the text. The part after a
// line break is a second address.
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>

#include "inventory/address_record.h"
#include "require.h"
#include "runtime/parse_unsigned16.h"
#include "text_models.h"

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
  try {
    const std::uint16_t prefixLength = netmaskToPrefix(text);
    require(bits.has_value(), "a netmask is a dotted quad");
    require(prefixLength == modelPrefixLength(*bits), "the lowest set bit gives the length");
    checkNetmaskOf(prefixLength);
  } catch (const std::runtime_error& failure) {
    require(!bits, "a dotted quad is a netmask");
    require(failure.what() == text + ": cannot convert to netmask", "the message names the text");
  }
}

void checkAddresses(const std::string& one, const std::string& other) {
  require(isSameIPv6Address(one, other) == modelSameIPv6(one, other),
          "two texts that print alike are one address");
  require(isSameIPv6Address(one, one) == modelSameIPv6(one, one),
          "only an address is the same as itself");
}

}  // namespace
}  // namespace addrtool::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace addrtool::fuzz;
  const std::string text = upToNul({reinterpret_cast<const char*>(data), size});
  const std::size_t lineEnd = text.find('\n');
  checkNumber(text);
  checkNetmask(text);
  checkAddresses(text.substr(0, lineEnd),
                 lineEnd == std::string::npos ? text : text.substr(lineEnd + 1));
  if (const auto length = modelUnsigned16(text).value) checkNetmaskOf(*length);
  return 0;
}
