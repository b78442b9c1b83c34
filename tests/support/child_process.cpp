#include "support/child_process.h"

#include <fcntl.h>
#include <spawn.h>
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

struct ChildFiles {
  int in = makeMemoryFile("in");  // stays empty
  int out = makeMemoryFile("out");
  int err = makeMemoryFile("err");
};

std::string takeContents(int fd) {
  std::string contents = readFile("/proc/self/fd/" + std::to_string(fd));
  close(fd);
  return contents;
}

Outcome waitFor(pid_t child, const ChildFiles& files) {
  int status = 0;
  waitpid(child, &status, 0);
  close(files.in);
  return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, WIFSIGNALED(status) ? WTERMSIG(status) : 0,
          takeContents(files.out), takeContents(files.err)};
}

}  // namespace

void PrintTo(const Outcome& outcome, std::ostream* stream) {
  *stream << "exit status " << outcome.exitStatus << ", signal " << outcome.signal
          << "\n--- standard output\n"
          << outcome.out << "--- standard error\n"
          << outcome.err << "---";
}

Outcome runInChild(const std::function<void()>& function) {
  const ChildFiles files;
  std::fflush(nullptr);
  const pid_t child = fork();
  if (child == -1) throw std::runtime_error("fork failed");
  if (child == 0) {
    dup2(files.in, STDIN_FILENO);
    dup2(files.out, STDOUT_FILENO);
    dup2(files.err, STDERR_FILENO);
    function();
    std::exit(0);
  }
  return waitFor(child, files);
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

// posix_spawn does not copy the page tables, which are large in a sanitized process.
Outcome runCommand(const std::vector<std::string>& command) {
  std::vector<char*> arguments;
  arguments.reserve(command.size() + 1);
  for (const std::string& word : command) arguments.push_back(const_cast<char*>(word.c_str()));
  arguments.push_back(nullptr);

  const ChildFiles files;
  posix_spawn_file_actions_t redirections;
  posix_spawn_file_actions_init(&redirections);
  posix_spawn_file_actions_adddup2(&redirections, files.in, STDIN_FILENO);
  posix_spawn_file_actions_adddup2(&redirections, files.out, STDOUT_FILENO);
  posix_spawn_file_actions_adddup2(&redirections, files.err, STDERR_FILENO);
  pid_t child = 0;
  const int error =
      posix_spawnp(&child, arguments.front(), &redirections, nullptr, arguments.data(), environ);
  posix_spawn_file_actions_destroy(&redirections);
  if (error != 0) throw std::runtime_error(command.front() + ": cannot be started");
  return waitFor(child, files);
}

Outcome runShell(const std::string& script) {
  return runCommand({"sh", "-c", script});
}

}  // namespace addrtool::testing
