#include "changes/run_ifconfig.h"

#include <sys/wait.h>

#include <cstdlib>
#include <stdexcept>

namespace addrtool {

void runIfconfig(const std::string& arguments) {
  const std::string commandLine = "/sbin/ifconfig " + arguments;
  // -1, a failure of system(3) itself, reads as an exit with status 255.
  const int status = std::system(commandLine.c_str());
  if (WIFSIGNALED(status)) {
    throw std::runtime_error(commandLine + " killed with signal " +
                             std::to_string(WTERMSIG(status)));
  }
  if (WEXITSTATUS(status) != 0) {
    throw std::runtime_error(commandLine + " exited with non-zero status " +
                             std::to_string(WEXITSTATUS(status)));
  }
}

}  // namespace addrtool
