// Checks a rule in a fuzzer.
#pragma once

namespace addrtool::fuzz {

/// Prints the rule and aborts if it does not hold. libFuzzer reports that as a crash.
void require(bool holds, const char* rule);

}  // namespace addrtool::fuzz
