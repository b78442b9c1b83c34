// What the fuzzers share: their types, how they fail, and second implementations of the small
// parsers, written differently, to compare the program with.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace addrtool::fuzz {

using Octets = std::span<const std::uint8_t>;

/// Each fuzzer defines this. Checks one input. Returns 0, or -1 to keep it out of the corpus.
int checkInput(Octets input);

/// Prints the rule and aborts if it does not hold. libFuzzer reports that as a crash.
void require(bool holds, const char* rule);

/// Runs the action. Returns the message of the std::runtime_error that it throws, if any.
std::optional<std::string> failureOf(const std::function<void()>& action);

/// The text of the bytes up to the first zero byte, as an operand or a C function sees them.
std::string upToNul(const std::string& bytes);

/// The parts between the separators, at least one.
std::vector<std::string> splitAt(const std::string& text, char separator);

/// The lines with their line feeds, in pieces of at most the given size.
std::vector<std::string> linesOf(const std::string& text, std::size_t longest = std::string::npos);

/// An unsigned 16-bit number, or whether the text is one that is too large.
struct ModelNumber {
  std::optional<std::uint16_t> value;
  bool isOutOfRange = false;
};

/// Strict decimal conversion: white space around, a plus in front, nothing above 65535.
ModelNumber modelUnsigned16(const std::string& text);

/// The 32 bits of a dotted quad.
std::optional<std::uint32_t> modelDottedQuad(const std::string& text);

/// The prefix length of those bits, from the lowest one that is set; 0 for none.
std::uint16_t modelPrefixLength(std::uint32_t mask);

/// The dotted netmask of a prefix length modulo 32. 0 counts as 32.
std::string modelNetmask(std::uint16_t prefixLength);

/// Whether both texts are IPv6 addresses that inet_ntop(3) writes alike.
bool modelSameIPv6(const std::string& one, const std::string& other);

}  // namespace addrtool::fuzz
