// The support library's log function, replaceable at run time: prioritised messages go to the
// console or to syslog(3). The settings are plain process-wide values; as they are at start, what
// is logged at a priority number up to 6 goes to standard error and standard output.
#pragma once

#include <cstdarg>

namespace addrtool {

// The settings are meant to be written by whoever uses the library.
// NOLINTBEGIN(cppcoreguidelines-avoid-non-const-global-variables)

/// Where the console sink prints: null or "console" for both streams, "stderr" for that alone (in
/// any case of letters), anything else for neither. Null given to initLogging means syslog.
extern const char* logTarget;

/// The console sink prints only what has at most this priority number.
extern int logThreshold;

/// Kept by initLogging and setLogLevel for whoever asks.
extern int logEnabled;

/// The facility syslog is opened with.
extern int logFacility;

/// The log function and its va_list form. The priority is a syslog priority number, compared whole:
/// one that carries a facility, as 12 does, is above the console's usual threshold.
extern
    __attribute__((format(printf, 2, 3))) void (*logMessage)(int priority, const char* format, ...);
extern __attribute__((format(printf, 2, 0))) void (*logMessageV)(int priority, const char* format,
                                                                 va_list arguments);

// NOLINTEND(cppcoreguidelines-avoid-non-const-global-variables)

/// The console sink: the text and a newline, flushed, on the streams of logTarget.
__attribute__((format(printf, 2, 3))) void consoleLog(int priority, const char* format, ...);
__attribute__((format(printf, 2, 0))) void consoleLogV(int priority, const char* format,
                                                       va_list arguments);

/// Chooses the sink: the console for a target, syslog opened anew with the other arguments (and the
/// process id in every message) for null. The texts are kept, not copied. Then setLogLevel(level).
void initLogging(const char* target, int level, int facility, int options, const char* ident);

/// Sets the threshold; a level below 1 turns both threshold and logEnabled to 0. Without a target
/// syslog's mask, too, is set to all priorities up to the level.
void setLogLevel(int level);

}  // namespace addrtool
