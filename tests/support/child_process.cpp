#include "support/child_process.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <cstdlib>

#include "support/files.h"

namespace addrtool::testing {
namespace {

// A memory file takes any amount of output, unlike a pipe, which blocks when it is full.
int makeMemoryFile(const char* name) {
  const int fd = memfd_create(name, MFD_CLOEXEC);
  if (fd == -1) throw std::runtime_error("memfd_create failed");
  return fd;
}

std::string takeContents(int fd) {
  std::string contents = readFile("/proc/self/fd/" + std::to_string(fd));
  close(fd);
  return contents;
}

}  // namespace

void PrintTo(const Outcome& outcome, std::ostream* stream) {
  *stream << "exit status " << outcome.exitStatus << ", signal " << outcome.signal
          << "\n--- standard output\n"
          << outcome.out << "--- standard error\n"
          << outcome.err << "---";
}

Outcome runInChild(const std::function<void()>& function) {
  const int out = makeMemoryFile("out");
  const int err = makeMemoryFile("err");
  std::fflush(nullptr);
  const pid_t child = fork();
  if (child == -1) throw std::runtime_error("fork failed");
  if (child == 0) {
    dup2(open("/dev/null", O_RDONLY | O_CLOEXEC), STDIN_FILENO);
    dup2(out, STDOUT_FILENO);
    dup2(err, STDERR_FILENO);
    function();
    std::exit(0);
  }
  int status = 0;
  waitpid(child, &status, 0);
  return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, WIFSIGNALED(status) ? WTERMSIG(status) : 0,
          takeContents(out), takeContents(err)};
}

Outcome runWithBrokenOutput(const std::function<void()>& function) {
  return runInChild([&function] {
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0) _exit(1);
    dup2(ends[1], STDOUT_FILENO);
    close(ends[0]);
    std::setvbuf(stderr, nullptr, _IOFBF, BUFSIZ);
    std::setvbuf(stdout, nullptr, _IONBF, 0);
    function();
  });
}

Outcome runCommand(const std::vector<std::string>& command) {
  return runInChild([&command] {
    std::vector<char*> arguments;
    arguments.reserve(command.size() + 1);
    for (const std::string& word : command) arguments.push_back(const_cast<char*>(word.c_str()));
    arguments.push_back(nullptr);
    execvp(arguments.front(), arguments.data());
    std::perror(arguments.front());
    _exit(127);
  });
}

Outcome runShell(const std::string& script) {
  return runCommand({"sh", "-c", script});
}

}  // namespace addrtool::testing
