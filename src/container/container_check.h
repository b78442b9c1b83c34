// Tells whether an address was assigned to the container that the machine runs in, as far as the
// container kernel's information file shows.
#pragma once

#include <cstdio>
#include <string>

namespace addrtool {

/// Whether some line of the stream holds the text, byte for byte and anywhere: 10.0.0.1 is found
/// in a line with 110.0.0.12. The empty text is found even where there is no line. A read error
/// ends the search as the end of the file does.
bool anyLineHolds(std::FILE* stream, const std::string& address);

/// 1 when some line of /proc/qv/veinfo holds the address text, else 0; 0 too without that file, so
/// on a machine that is no container.
int isAssignedToContainer(const std::string& address);

/// Prints that digit on standard output, without a newline, and flushes it. The answer is no
/// failure either way.
void printContainerCheck(const std::string& address);

}  // namespace addrtool
