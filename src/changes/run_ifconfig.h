// The one way in which the program changes the running network.
#pragma once

#include <string>

namespace addrtool {

/// Runs "/sbin/ifconfig" with the arguments through the shell, to its end. `arguments` is shell
/// text that goes in as it stands: the caller's quotes are the only protection from the shell.
/// The command writes to the program's own streams and may take as long as it likes.
///
/// Raises std::runtime_error, the whole command line followed by " killed with signal " and the
/// signal's number, or by " exited with non-zero status " and the status. A command that could
/// not be started at all counts as status 255.
void runIfconfig(const std::string& arguments);

}  // namespace addrtool
