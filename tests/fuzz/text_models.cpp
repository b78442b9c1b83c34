#include "text_models.h"

#include <arpa/inet.h>
#include <netinet/in.h>

#include <algorithm>
#include <array>

namespace addrtool::fuzz {
namespace {

constexpr const char* numberBlanks = " \t\n\r";
constexpr const char* digits = "0123456789";

std::string withoutLeading(const std::string& text, const char* characters) {
  return text.substr(std::min(text.find_first_not_of(characters), text.size()));
}

std::string withoutTrailing(const std::string& text, const char* characters) {
  return text.substr(0, text.find_last_not_of(characters) + 1);
}

std::optional<std::string> canonicalIPv6(const std::string& text) {
  in6_addr address{};
  if (inet_pton(AF_INET6, text.c_str(), &address) != 1) return std::nullopt;
  std::array<char, INET6_ADDRSTRLEN> canonical{};
  inet_ntop(AF_INET6, &address, canonical.data(), canonical.size());
  return canonical.data();
}

}  // namespace

std::string upToNul(const std::string& bytes) {
  return bytes.substr(0, bytes.find('\0'));
}

std::vector<std::string> splitAt(const std::string& text, char separator) {
  std::vector<std::string> parts(1);
  for (const char character : text) {
    if (character == separator) {
      parts.emplace_back();
    } else {
      parts.back() += character;
    }
  }
  return parts;
}

ModelNumber modelUnsigned16(const std::string& text) {
  std::string rest = withoutLeading(text, numberBlanks);
  if (rest.empty() || rest == "+") return {};
  if (rest.front() == '+') rest = withoutLeading(rest.substr(1), numberBlanks);

  const std::string number = rest.substr(0, rest.find_first_not_of(digits));
  const std::string significant = withoutLeading(number, "0");
  if (significant.size() > 5 || (significant.size() == 5 && significant > "65535")) {
    return {std::nullopt, true};
  }
  if (withoutTrailing(rest, numberBlanks) != number) return {};
  return {static_cast<std::uint16_t>(significant.empty() ? 0 : std::stoul(significant)), false};
}

std::optional<std::uint32_t> modelDottedQuad(const std::string& text) {
  in_addr bits{};
  if (inet_pton(AF_INET, text.c_str(), &bits) != 1) return std::nullopt;
  return ntohl(bits.s_addr);
}

std::uint16_t modelPrefixLength(std::uint32_t mask) {
  std::uint16_t length = 0;
  for (std::uint16_t position = 1; position <= 32; ++position) {
    if ((mask & (std::uint32_t{1} << (32U - position))) != 0) length = position;
  }
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
