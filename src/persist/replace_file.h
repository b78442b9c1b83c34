// Rewrites a file atomically: the new content goes to a temporary file beside the target, which is
// then renamed over it. A reader sees either the old content or the new, never a part. C-style, as
// the support library: no function here prints or throws.
#pragma once

#include <cstdio>

namespace addrtool {

/// Writes the new content of a file. `oldFile` is the old file, open for reading, or null if there
/// is none. `newFile` is open for writing. `context` comes from the caller of replaceFile. The
/// writer closes neither stream and throws nothing. It returns 0, or any other value for a failure.
using FileWriter = int (*)(std::FILE* oldFile, std::FILE* newFile, void* context);

/// Replaces the file at `path` with what `writer` produces. The new file gets the owner, group and
/// mode of the old one; without an old one, it gets 0, 0 and 0644. If `mustExist` is not 0, a
/// missing file is a failure.
///
/// Returns 0 when the file was replaced. Otherwise the target is unchanged, and the result is
/// - the writer's result if the writer failed; the temporary file has been removed;
/// - -1 if a system call failed, with its errno (ENAMETOOLONG for a path of 4089 bytes or more); a
///   temporary file that was already made, "<path>.XXXXXX", stays.
///
/// A failed write of the new file is not detected. If two processes replace the same file at the
/// same time, the last rename wins.
int replaceFile(const char* path, FileWriter writer, void* context, int mustExist);

}  // namespace addrtool
