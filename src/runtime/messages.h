// The message function of the support library: it formats a text, prints it on standard error and
// on standard output, and can end the process. Three functions that check an argument use it.
// C-style: no function here throws. errno is an input: if it is not 0, the message ends with that
// error, even if it has nothing to do with the message. The program itself calls only
// checkLeftoverArguments.
#pragma once

#include <cstddef>

namespace addrtool {

/// If not null, every message starts with the last component of this path and ": ".
extern const char* messageProgramName;  // NOLINT(*-avoid-non-const-global-variables): a setting

/// What callers pass as `flag`, which has no effect.
inline constexpr int unusedFlag = 1;

/// Formats the text and prints it with printMessage. If errno is not 0, "\nSystem error %d: %s"
/// with its number and text follows. The buffer has room for 4095 characters. It grows for a longer
/// text, but not for this suffix: a suffix that does not fit is dropped. Returns only if status is
/// 0. `flag` is unused.
__attribute__((format(printf, 3, 4))) void reportMessage(int status, int flag, const char* format,
                                                         ...);

/// Prints the prefix and the message on standard error, then on standard output, and flushes each.
/// Adds a newline unless the message ends with one. Ends the process with `status` if that is not
/// 0, else returns 0. `flag` is unused.
int printMessage(const char* message, int status, int flag);

/// Reports leftover operands and ends the process with status 1, if argc is not `firstOperand`
/// (optind of the parser).
void checkLeftoverArguments(int argc, int firstOperand, char** argv);

/// If the parameter is `present` but its value is null or empty, reports that and ends the process
/// with status 1.
void checkRequiredParameter(int present, const char* value, const char* name);

/// Calls realloc(3). If that returns null, reports it and ends the process with status 1.
void* reallocOrDie(void* pointer, std::size_t size);

}  // namespace addrtool
