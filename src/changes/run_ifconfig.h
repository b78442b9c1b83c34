// The one way in which the program changes the running network.
#pragma once

#include <string>

namespace addrtool {

/// Runs "/sbin/ifconfig" with the arguments through the shell, to its end. `arguments` is shell
/// text that goes in as it stands: the caller's quotes are the only protection from the shell.
/// The command writes to the program's own streams and may take as long as it likes.
///
/// Raises std::runtime_error, the whole command line followed by " killed with signal " and the
/// signal's number, or by " exited with non-zero status " and the status. What is judged is the
/// shell: it exits with 127 when the command is missing, and a shell that waits for the command in
/// place of becoming it exits with 128 and the signal's number. A failure of system(3) itself
/// counts as status 255.
void runIfconfig(const std::string& arguments);

}  // namespace addrtool
