// Fuzzes the parsers of numbers, netmasks and IPv6 addresses. The input is the text. Its first line
// and the rest are two addresses.
#include <arpa/inet.h>

#include <algorithm>
#include <cerrno>
#include <stdexcept>
#include <string>

#include "fuzzing.h"
#include "inventory/address_record.h"
#include "runtime/parse_unsigned16.h"

namespace addrtool::fuzz {
namespace {

void checkNumber(const std::string& text) {
  std::uint16_t value = 54321;
  errno = 0;
  if (parseUnsigned16(text.c_str(), &value) != 0) {
    require(value == 54321, "a failure leaves the value unchanged");
    require(errno == 0 || errno == ERANGE, "errno tells of large numbers");
    return;
  }
  const std::size_t start = std::min(text.find_first_not_of("+ \t\n\r0"), text.size());
  const std::string digits = text.substr(start, text.find_last_not_of(" \t\n\r") + 1 - start);
  require(value == 0 || digits == std::to_string(value), "a number is its digits: at most 65535");
  require(errno == 0, "a success leaves errno unchanged");
}

void checkNetmask(const std::string& text) {
  try {
    const std::uint16_t length = netmaskToPrefix(text);
    require(length <= 32, "a netmask has at most 32 bits");
    require(netmaskToPrefix(prefixToNetmask({"", length})) == (length == 0 ? 32 : length),
            "the netmask of a length has this length");
  } catch (const std::runtime_error& failure) {
    require(failure.what() == text + ": cannot convert to netmask", "the message names the text");
  }
}

void checkAddresses(const std::string& one, const std::string& other) {
  in6_addr bytes{};
  require(isSameIPv6Address(one, one) == (inet_pton(AF_INET6, one.c_str(), &bytes) == 1),
          "exactly an address equals itself");
  require(isSameIPv6Address(one, other) == isSameIPv6Address(other, one),
          "the order of two addresses does not matter");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text = std::string(data, data + size).c_str();  // it ends at a zero byte
  checkNumber(text);
  checkNetmask(text);
  const std::size_t line = std::min(text.find('\n'), text.size());
  checkAddresses(text.substr(0, line), text.substr(std::min(line + 1, text.size())));
  return 0;
}

}  // namespace addrtool::fuzz
