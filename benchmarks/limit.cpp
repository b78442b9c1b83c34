// The limit: the least work with which a program can print what `addrtool --list` prints, byte for
// byte. scripts/bench measures addrtool against it.
//
// It follows the same rules: one request, one buffer of 8,192 bytes for the request and every
// reply, the same filters, the same order, interface names from the kernel, one write for each
// line.
//
// It leaves out everything else. It trusts every length that the kernel gives, aborts on a failure,
// allocates nothing, sorts by plain integers, formats IPv4 addresses itself, and uses only what the
// compiler inlines of the C++ library. Do not write a program like this if it has to be trusted.
#include <arpa/inet.h>
#include <linux/netlink.h>
#include <linux/rtnetlink.h>
#include <net/if.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <span>
#include <string_view>
#include <tuple>

namespace {

// Up to 16 bytes of text as two numbers that compare as the text does.
using TextKey = std::array<std::uint64_t, 2>;

enum Kind : std::uint32_t { plainIPv4, aliasIPv4, ipv6 };

struct Address {
  TextKey interface {};
  Kind kind = plainIPv4;
  TextKey suffix{};
  std::uint32_t arrival = 0;
  unsigned char prefixLength = 0;
  std::array<unsigned char, 16> bytes{};
};

// The order of the lines.
bool comesBefore(const Address& one, const Address& other) {
  return std::tie(one.interface, one.kind, one.suffix, one.arrival) <
         std::tie(other.interface, other.kind, other.suffix, other.arrival);
}

struct Addresses {
  std::array<Address, 65'536> items;  // takes memory only as far as it is used
  std::uint32_t count = 0;

  void append(const Address& address) {
    if (count == items.size()) std::abort();
    Address* added = items.data() + count;
    *added = address;
    added->arrival = count++;
  }
};

template <typename T>
const T* at(const void* bytes) {
  return static_cast<const T*>(bytes);
}

TextKey keyOf(const char* text) {
  TextKey bytes{};
  std::memcpy(bytes.data(), text, std::min(std::strlen(text), sizeof(bytes)));
  return {__builtin_bswap64(bytes[0]), __builtin_bswap64(bytes[1])};
}

TextKey interfaceKey(unsigned index) {
  static unsigned lastIndex = 0;
  static TextKey lastKey{};
  if (index != lastIndex) {
    std::array<char, IF_NAMESIZE> name{};
    if (if_indextoname(index, name.data()) == nullptr) std::abort();
    lastKey = keyOf(name.data());
    lastIndex = index;
  }
  return lastKey;
}

bool isManaged(const ifaddrmsg& header) {
  if (header.ifa_scope != RT_SCOPE_UNIVERSE) return false;
  return header.ifa_family == AF_INET ||
         (header.ifa_family == AF_INET6 &&
          (header.ifa_flags & (IFA_F_TEMPORARY | IFA_F_PERMANENT)) == IFA_F_PERMANENT);
}

void collect(const unsigned char* message, std::uint32_t length, Addresses& addresses) {
  const ifaddrmsg& header = *at<ifaddrmsg>(message + sizeof(nlmsghdr));
  if (!isManaged(header)) return;

  Address found;
  found.kind = header.ifa_family == AF_INET ? plainIPv4 : ipv6;
  found.prefixLength = header.ifa_prefixlen;
  const std::size_t size = found.kind == ipv6 ? 16 : 4;
  bool hasLocal = false;
  for (std::size_t offset = sizeof(nlmsghdr) + sizeof(ifaddrmsg); offset < length;) {
    const rtattr& attribute = *at<rtattr>(message + offset);
    const unsigned char* payload = message + offset + sizeof(rtattr);
    if (attribute.rta_type == IFA_LOCAL || (attribute.rta_type == IFA_ADDRESS && !hasLocal)) {
      std::memcpy(found.bytes.data(), payload, size);
      hasLocal = attribute.rta_type == IFA_LOCAL;
    }
    if (attribute.rta_type == IFA_LABEL && found.kind != ipv6) {
      const char* colon = std::strchr(at<char>(payload), ':');
      if (colon != nullptr) {
        found.kind = aliasIPv4;
        found.suffix = keyOf(colon + 1);
      }
    }
    offset += (attribute.rta_len + 3U) & ~3U;
  }
  constexpr std::array<unsigned char, 16> neverManaged{0, 0, 0, 0, 0, 0, 0, 0,
                                                       0, 0, 0, 0, 0, 0, 0, 2};
  if (found.kind == ipv6 && found.bytes == neverManaged) return;
  found.interface = interfaceKey(header.ifa_index);
  addresses.append(found);
}

void readAddresses(Addresses& addresses) {
  struct {
    nlmsghdr header;
    ifaddrmsg message;
  } request = {};
  request.header.nlmsg_len = sizeof(request);
  request.header.nlmsg_type = RTM_GETADDR;
  request.header.nlmsg_flags = NLM_F_REQUEST | NLM_F_ROOT;

  alignas(nlmsghdr) std::array<unsigned char, 8192> buffer{};
  std::memcpy(buffer.data(), &request, sizeof(request));
  const int socketFd = socket(AF_NETLINK, SOCK_DGRAM, NETLINK_ROUTE);
  if (send(socketFd, buffer.data(), sizeof(request), 0) == -1) std::abort();
  for (;;) {
    const ssize_t received = recv(socketFd, buffer.data(), buffer.size(), 0);
    if (received <= 0) std::abort();
    const unsigned char* const end = buffer.data() + received;
    for (const unsigned char* message = buffer.data(); message < end;) {
      const nlmsghdr& header = *at<nlmsghdr>(message);
      if (header.nlmsg_type == NLMSG_DONE) return;
      collect(message, header.nlmsg_len, addresses);
      message += (header.nlmsg_len + 3U) & ~3U;
    }
  }
}

char* putNumber(char* out, unsigned number) {
  if (number >= 100) *out++ = static_cast<char>('0' + number / 100);
  if (number >= 10) *out++ = static_cast<char>('0' + number / 10 % 10);
  *out++ = static_cast<char>('0' + number % 10);
  return out;
}

char* putIPv4(char* out, const unsigned char* bytes) {
  for (int i = 0; i < 4; ++i) {
    if (i > 0) *out++ = '.';
    out = putNumber(out, bytes[i]);
  }
  return out;
}

char* putNetmask(char* out, unsigned prefixLength) {
  const std::uint32_t mask = htonl(~std::uint32_t{0} << ((32 - prefixLength) % 32));
  return putIPv4(out, at<unsigned char>(&mask));
}

void printLine(const Address& address, bool isPrimary) {
  std::array<char, 128> line{};
  char* out = line.data();
  if (address.kind == ipv6) {
    inet_ntop(AF_INET6, address.bytes.data(), out, INET6_ADDRSTRLEN);
    out += std::strlen(out);
    *out++ = ' ';
    out = putNumber(out, address.prefixLength);
  } else {
    out = putIPv4(out, address.bytes.data());
    *out++ = ' ';
    out = putNetmask(out, address.prefixLength);
  }
  *out++ = ' ';
  const TextKey name{__builtin_bswap64(address.interface[0]),
                     __builtin_bswap64(address.interface[1])};
  std::memcpy(out, &name, sizeof(name));
  out += std::strlen(out);
  *out++ = ' ';
  *out++ = isPrimary ? '1' : '0';
  *out++ = '\n';
  const auto size = static_cast<std::size_t>(out - line.data());
  if (write(STDOUT_FILENO, line.data(), size) == -1) std::abort();
}

void list() {
  static constinit Addresses addresses{};
  readAddresses(addresses);
  const std::span found(addresses.items.data(), addresses.count);
  std::sort(found.begin(), found.end(), comesBefore);
  const Address* last = nullptr;
  for (const Address& address : found) {
    const bool sameInterface = last != nullptr && last->interface == address.interface;
    if (sameInterface && address.kind == aliasIPv4 && last->kind == aliasIPv4 &&
        last->suffix == address.suffix) {
      continue;  // of two aliases with the same suffix, the first to arrive counts
    }
    printLine(address, !sameInterface && address.kind != ipv6);
    last = &address;
  }
}

int help() {
  constexpr std::string_view text =
      R"(Usage: addrtool [OPTIONS]...

  -l,  --list                                  list all addresses in format: "<ipaddr> <netmask> <interface> <is-primary-ip>\n ..."
  -a,  --add <interface> <ipaddress> <netmask> add IP on <interface>
  -d,  --del <ipaddress>                       delete IP
  -h,  --help                                  display this help and exit
  -v,  --qv-assigned-ip <ipaddress>            determine if <ipaddress> was assigned to this VE
)";
  if (write(STDERR_FILENO, text.data(), text.size()) == -1) std::abort();
  return 2;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc > 1 && std::strcmp(argv[1], "--help") == 0) return help();
  list();
  return 0;
}
