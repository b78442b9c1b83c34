// Tells whether an address was assigned to the container that this program runs in, by searching
// the information file of the container kernel.
#pragma once

#include <cstdio>
#include <string>

namespace addrtool {

/// Whether any line of the stream contains the text, compared byte for byte: 10.0.0.1 is found in a
/// line with 110.0.0.12. The empty text is always found, even in an empty file. A read error counts
/// as the end of the file.
bool anyLineHolds(std::FILE* stream, const std::string& address);

/// Returns 1 when a line of /proc/qv/veinfo contains the address text, else 0. Without that file,
/// which only containers have, it returns 0.
int isAssignedToContainer(const std::string& address);

/// Prints that digit on standard output without a newline and flushes it. Never fails.
void printContainerCheck(const std::string& address);

}  // namespace addrtool
