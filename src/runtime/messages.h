// The support library's message routine: a printf-style text, shown to the user on standard error
// and again on standard output, that can end the process. With it, three helpers that report and
// end. Plain C style: nothing here raises, and errno is an input (a text that is reported while
// errno is set carries the system's error, related or not).
#pragma once

#include <cstddef>

namespace addrtool {

/// Null, or a program path: its last component and ": " then begin every message.
extern const char* messageProgramName;  // NOLINT(*-avoid-non-const-global-variables): a setting

/// Formats the text and prints it with printMessage. When errno is not 0, "\nSystem error %d: %s"
/// with the number and its text follows; a suffix that no longer fits the buffer is dropped whole.
/// The buffer takes 4095 characters; only for a longer text it grows, by what the text alone needs.
/// Returns only when status is 0. `flag` has no meaning; callers pass 1.
__attribute__((format(printf, 3, 4))) void reportMessage(int status, int flag, const char* format,
                                                         ...);

/// Prints the prefix, the message and a newline, unless the message brings its own, on standard
/// error and then the same on standard output, flushing each. Ends the process with `status` when
/// that is not 0; returns 0 otherwise. `flag` has no meaning.
int printMessage(const char* message, int status, int flag);

/// Reports operands that nothing took and ends with status 1, when argc is not `firstOperand` (the
/// parser's optind).
void checkLeftoverArguments(int argc, int firstOperand, char** argv);

/// Reports a parameter that was named without a value (null or empty) and ends with status 1.
/// A parameter that is not `present` needs no value.
void checkRequiredParameter(int present, const char* value, const char* name);

/// realloc(3) that reports and ends with status 1 where that returns null.
void* reallocOrDie(void* pointer, std::size_t size);

}  // namespace addrtool
