// The one way to rewrite a file: new content goes to a temporary file beside the target, which is
// then moved over it, so that a reader finds either the old content or the new, never a part.
// Plain functions over plain data, as in the rest of the support library: nothing is printed,
// nothing is raised.
#pragma once

#include <cstdio>

namespace addrtool {

/// Writes the new content of a file. `oldFile` is the present file opened for reading, or null
/// when there is none; `newFile` is open for writing; `context` is what replaceFile was given.
/// Opens and closes neither stream, raises nothing. Returns 0, or anything else for a failure.
using FileWriter = int (*)(std::FILE* oldFile, std::FILE* newFile, void* context);

/// Replaces the file at `path` by what `writer` produces. The new file takes over owner, group
/// and mode of the old one; without an old one they are 0, 0 and 0644. `mustExist` (a flag)
/// refuses to make a file that was not there.
///
/// Returns 0 when the file has been replaced. Otherwise the target is as it was, and the result is
/// - the writer's own, when the writer failed; the temporary file has been removed;
/// - -1, when the system did, with `errno` as the failing call left it (ENAMETOOLONG for a path of
///   4089 bytes or more); the temporary file, "<path>.XXXXXX", stays if it had been made.
///
/// Whether the content reached the disk is not examined: a write error that shows only when the
/// new file is closed is not noticed. Two replacements at a time do not mix; the last one wins.
int replaceFile(const char* path, FileWriter writer, void* context, int mustExist);

}  // namespace addrtool
