// Strict conversion of a text to an unsigned 16-bit number. C-style: it does not throw.
#pragma once

#include <cstdint>

namespace addrtool {

/// Parses decimal digits. White space (blank, tab, line feed, carriage return) may surround them,
/// and a "+" may precede them, with white space after it. Returns 0 and sets `value`, or returns -1
/// and leaves `value` unchanged.
/// - Rejects an empty text, white space alone, any other character, and a "+" at the very end.
/// - Accepts a "+" followed only by white space, as 0.
/// - Rejects a number above 65535 with errno ERANGE. No other case sets errno.
int parseUnsigned16(const char* text, std::uint16_t* value);

}  // namespace addrtool
