#include "fuzzing.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <stdexcept>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  return addrtool::fuzz::checkInput({data, size});
}

namespace addrtool::fuzz {
namespace {

// A copy from the start, because libFuzzer discards what the program prints.
const int reportFd = dup(STDERR_FILENO);

constexpr const char* numberBlanks = " \t\n\r";

std::string withoutLeading(const std::string& text, const char* characters) {
  return text.substr(std::min(text.find_first_not_of(characters), text.size()));
}

std::optional<std::string> canonicalIPv6(const std::string& text) {
  in6_addr address{};
  if (inet_pton(AF_INET6, text.c_str(), &address) != 1) return std::nullopt;
  std::array<char, INET6_ADDRSTRLEN> canonical{};
  inet_ntop(AF_INET6, &address, canonical.data(), canonical.size());
  return canonical.data();
}

}  // namespace

void require(bool holds, const char* rule) {
  if (holds) return;
  dprintf(reportFd, "\nrule broken: %s\n", rule);
  std::abort();
}

std::optional<std::string> failureOf(const std::function<void()>& action) {
  try {
    action();
    return std::nullopt;
  } catch (const std::runtime_error& failure) {
    return failure.what();
  }
}

std::string upToNul(const std::string& bytes) {
  return bytes.substr(0, bytes.find('\0'));
}

std::vector<std::string> splitAt(const std::string& text, char separator) {
  std::vector<std::string> parts;
  for (std::size_t at = 0; at <= text.size(); at += parts.back().size() + 1) {
    parts.push_back(text.substr(at, text.find(separator, at) - at));
  }
  return parts;
}

std::vector<std::string> linesOf(const std::string& text, std::size_t longest) {
  std::vector<std::string> lines;
  for (std::size_t at = 0; at < text.size(); at += lines.back().size()) {
    const std::size_t end = std::min(text.find('\n', at), text.size() - 1);
    lines.push_back(text.substr(at, std::min(end - at + 1, longest)));
  }
  return lines;
}

ModelNumber modelUnsigned16(const std::string& text) {
  std::string rest = withoutLeading(text, numberBlanks);
  if (rest.empty() || rest == "+") return {};
  if (rest.front() == '+') rest = withoutLeading(rest.substr(1), numberBlanks);

  const std::string number = rest.substr(0, rest.find_first_not_of("0123456789"));
  const std::string significant = withoutLeading(number, "0");
  if (significant.size() > 5 || (significant.size() == 5 && significant > "65535")) {
    return {std::nullopt, true};
  }
  if (!withoutLeading(rest.substr(number.size()), numberBlanks).empty()) return {};
  return {static_cast<std::uint16_t>(significant.empty() ? 0 : std::stoul(significant)), false};
}

std::optional<std::uint32_t> modelDottedQuad(const std::string& text) {
  in_addr bits{};
  if (inet_pton(AF_INET, text.c_str(), &bits) != 1) return std::nullopt;
  return ntohl(bits.s_addr);
}

std::uint16_t modelPrefixLength(std::uint32_t mask) {
  std::uint16_t length = 32;
  for (; length > 0 && mask % 2 == 0; mask /= 2) --length;
  return length;
}

std::string modelNetmask(std::uint16_t prefixLength) {
  const int ones = prefixLength % 32 == 0 ? 32 : prefixLength % 32;
  std::string text;
  for (int octet = 0; octet < 4; ++octet) {
    const int onesHere = std::clamp(ones - 8 * octet, 0, 8);
    text += (octet == 0 ? "" : ".") + std::to_string(256 - (1 << (8 - onesHere)));
  }
  return text;
}

bool modelSameIPv6(const std::string& one, const std::string& other) {
  const auto canonical = canonicalIPv6(one);
  return canonical && canonical == canonicalIPv6(other);
}

}  // namespace addrtool::fuzz
