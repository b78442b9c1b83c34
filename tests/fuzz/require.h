// How a harness states a rule.
#pragma once

namespace addrtool::fuzz {

/// Ends the process as a crash does, which libFuzzer takes for a find, when the rule does not hold.
/// The rule is named on the standard error that the process was started with.
void require(bool holds, const char* rule);

}  // namespace addrtool::fuzz
