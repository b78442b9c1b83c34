// The log function of the support library, which can be replaced at run time. It sends messages
// with a priority to the console or to syslog(3). The settings are process-wide. By default,
// messages with a priority number of at most 6 go to standard error and to standard output. The
// program itself keeps the default settings: it calls neither initLogging nor setLogLevel.
#pragma once

#include <cstdarg>

namespace addrtool {

// Users of the library may set these variables.
// NOLINTBEGIN(cppcoreguidelines-avoid-non-const-global-variables)

/// Where the console sink prints: on both streams if null or "console", on standard error if
/// "stderr", nowhere otherwise. Case is ignored. In initLogging, null means syslog.
extern const char* logTarget;

/// The highest priority number that the console sink prints.
extern int logThreshold;

/// Set by initLogging and setLogLevel. This library does not read it.
extern int logEnabled;

/// The facility for syslog.
extern int logFacility;

/// The log function and its va_list form. The priority is a syslog priority number. The console
/// sink compares it whole, so a number with a facility, such as 12, is above the default threshold.
extern
    __attribute__((format(printf, 2, 3))) void (*logMessage)(int priority, const char* format, ...);
extern __attribute__((format(printf, 2, 0))) void (*logMessageV)(int priority, const char* format,
                                                                 va_list arguments);

// NOLINTEND(cppcoreguidelines-avoid-non-const-global-variables)

/// The console sink. Prints the text and a newline on the streams of logTarget and flushes them.
__attribute__((format(printf, 2, 3))) void consoleLog(int priority, const char* format, ...);
__attribute__((format(printf, 2, 0))) void consoleLogV(int priority, const char* format,
                                                       va_list arguments);

/// Chooses the sink, then calls setLogLevel(level). A target selects the console sink. Null reopens
/// syslog with the other arguments and adds the process id to each message. The texts are not
/// copied and must stay valid.
void initLogging(const char* target, int level, int facility, int options, const char* ident);

/// Sets logThreshold to the level and logEnabled to 1. A level below 1 sets both to 0. Without a
/// target, also sets the syslog mask to all priorities up to the level. For a negative level that
/// mask is 0, and setlogmask(3) ignores a mask of 0.
void setLogLevel(int level);

}  // namespace addrtool
