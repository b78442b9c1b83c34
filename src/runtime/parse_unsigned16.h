// Strict conversion of a text to an unsigned 16-bit number.
#pragma once

#include <cstdint>

namespace addrtool {

/// Reads decimal digits with optional white space (blank, tab, line feed, carriage return) on both
/// sides and an optional "+" before them, which may be followed by white space. Returns 0 and sets
/// `value`, or returns -1 and leaves it alone. Nothing but white space is refused, as is "-" and a
/// "+" at the very end; a "+" with only white space behind it is 0. A number above 65535 is refused
/// with errno ERANGE, whatever follows it; otherwise errno is not touched.
int parseUnsigned16(const char* text, std::uint16_t* value);

}  // namespace addrtool
