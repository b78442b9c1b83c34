#include "support/canned_machine.h"

#include <gtest/gtest.h>
#include <net/if.h>
#include <sys/socket.h>

#include <cerrno>
#include <cstdlib>

// NOLINTBEGIN(bugprone-reserved-identifier, cert-dcl*, readability-identifier-naming)
using addrtool::testing::CannedMachine;

extern "C" {

ssize_t __real_send(int socketFd, const void* bytes, std::size_t size, int flags);
ssize_t __wrap_send(int socketFd, const void* bytes, std::size_t size, int flags) {
  CannedMachine* const machine = CannedMachine::current;
  if (machine == nullptr) return __real_send(socketFd, bytes, size, flags);
  EXPECT_EQ(flags, 0);
  machine->sent.emplace_back(static_cast<const char*>(bytes), size);
  errno = machine->sendError;
  return errno == 0 ? __real_send(socketFd, bytes, size, flags) : -1;
}

ssize_t __real_recv(int socketFd, void* buffer, std::size_t size, int flags);
ssize_t __wrap_recv(int socketFd, void* buffer, std::size_t size, int flags) {
  CannedMachine* const machine = CannedMachine::current;
  if (machine == nullptr) return __real_recv(socketFd, buffer, size, flags);
  EXPECT_EQ(size, 8192U);
  EXPECT_EQ(flags, 0);
  const auto& [datagram, error] = machine->replies.at(machine->received++);
  errno = error;
  return error == 0 ? static_cast<ssize_t>(datagram.copy(static_cast<char*>(buffer), size)) : -1;
}

char* __real_if_indextoname(unsigned index, char* name);
char* __wrap_if_indextoname(unsigned index, char* name) {
  CannedMachine* const machine = CannedMachine::current;
  if (machine == nullptr) return __real_if_indextoname(index, name);
  if (index == 0 || index > machine->interfaces.size()) {
    errno = static_cast<int>(index);
    return nullptr;
  }
  const std::string& found = machine->interfaces[index - 1];
  name[found.copy(name, IF_NAMESIZE - 1)] = '\0';
  return name;
}

int __wrap_system(const char* command) {
  CannedMachine* const machine = CannedMachine::current;
  if (machine == nullptr) {
    ADD_FAILURE() << "unit tests must not run " << command;
    return -1;
  }
  machine->commands.emplace_back(command);
  return machine->commandStatus;
}

}  // extern "C"
// NOLINTEND(bugprone-reserved-identifier, cert-dcl*, readability-identifier-naming)
