// Answers of the machine that a test chooses: the results of recv(2), send(2), if_indextoname(3)
// and system(3). The linker redirects the calls of the code under test (--wrap). The socket is
// real.
#pragma once

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

#include "support/netlink_bytes.h"

namespace addrtool::testing {

/// One result of recv(2): a datagram, or else an error.
struct Reply {
  std::string datagram;
  int error = 0;
};

/// While it exists, recv(2) gives its replies one after the other. Only one may exist at a time.
/// Without one, the kernel answers, but system(3) always fails its test and runs nothing.
struct CannedMachine {
  explicit CannedMachine(std::vector<Reply> recvResults = {}) : replies(std::move(recvResults)) {
    current = this;
  }
  /// One datagram with these messages, and the end of the dump.
  explicit CannedMachine(const std::vector<AddressMessage>& messages)
      : CannedMachine({{datagramOf(messages)}, {headerOnly(16, NLMSG_DONE)}}) {}
  ~CannedMachine() { current = nullptr; }
  CannedMachine(const CannedMachine&) = delete;
  CannedMachine& operator=(const CannedMachine&) = delete;

  std::vector<Reply> replies;
  std::size_t received = 0;  ///< the number of replies so far

  std::vector<std::string> sent = {};  ///< what send(2) got
  int sendError = 0;

  /// The interfaces 1, 2 ... For any other index, if_indextoname(3) fails with the index as errno.
  std::vector<std::string> interfaces{"eth0", "eth1", "lo"};

  std::vector<std::string> commands = {};  ///< what system(3) got
  int commandStatus = 0;

  static inline CannedMachine* current = nullptr;
};

}  // namespace addrtool::testing
