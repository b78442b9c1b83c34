// Extended regular expressions, regex(7). <regex> would take seconds to compile in each test file.
#pragma once

#include <string>
#include <vector>

namespace addrtool::testing {

/// Returns the matches of the pattern in the text: each one whole, then its groups. A group that
/// takes no part is empty. Stops at an empty match. Throws std::invalid_argument if the pattern is
/// malformed.
std::vector<std::vector<std::string>> findAll(const std::string& text, const std::string& pattern);

}  // namespace addrtool::testing
