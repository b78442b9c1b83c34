#include "runtime/parse_unsigned16.h"

#include <cerrno>
#include <cstdint>
#include <cstring>
#include <limits>

namespace addrtool {
namespace {

const char* skipWhiteSpace(const char* text) {
  return text + std::strspn(text, " \t\n\r");
}

}  // namespace

int parseUnsigned16(const char* text, std::uint16_t* value) {
  const char* next = skipWhiteSpace(text);
  if (*next == '+') ++next;
  if (*next == '\0') return -1;

  unsigned result = 0;
  for (next = skipWhiteSpace(next); *next >= '0' && *next <= '9'; ++next) {
    result = result * 10 + static_cast<unsigned>(*next - '0');
    if (result > std::numeric_limits<std::uint16_t>::max()) {
      errno = ERANGE;
      return -1;
    }
  }
  if (*skipWhiteSpace(next) != '\0') return -1;
  *value = static_cast<std::uint16_t>(result);
  return 0;
}

}  // namespace addrtool
