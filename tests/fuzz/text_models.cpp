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

std::optional<std::uint32_t> modelOctet(const std::string& text) {
  if (text.empty() || text.size() > 3 || text.find_first_not_of(digits) != std::string::npos) {
    return std::nullopt;
  }
  const unsigned long value = std::stoul(text);
  if (value > 255 || std::to_string(value) != text) return std::nullopt;
  return static_cast<std::uint32_t>(value);
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
  const std::vector<std::string> parts = splitAt(text, '.');
  if (parts.size() != 4) return std::nullopt;
  std::uint32_t bits = 0;
  for (const std::string& part : parts) {
    const auto octet = modelOctet(part);
    if (!octet) return std::nullopt;
    bits = bits * 256 + *octet;
  }
  return bits;
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
  std::array<unsigned char, sizeof(in6_addr)> left{};
  std::array<unsigned char, sizeof(in6_addr)> right{};
  return inet_pton(AF_INET6, one.c_str(), left.data()) == 1 &&
         inet_pton(AF_INET6, other.c_str(), right.data()) == 1 && left == right;
}

}  // namespace addrtool::fuzz
