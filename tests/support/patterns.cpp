#include "support/patterns.h"

#include <regex.h>

#include <stdexcept>

namespace addrtool::testing {

std::vector<std::vector<std::string>> findAll(const std::string& text, const std::string& pattern) {
  regex_t regex;
  if (regcomp(&regex, pattern.c_str(), REG_EXTENDED) != 0) throw std::invalid_argument(pattern);
  std::vector<std::vector<std::string>> matches;
  std::vector<regmatch_t> groups(regex.re_nsub + 1);
  const char* rest = text.c_str();
  int flags = 0;
  while (regexec(&regex, rest, groups.size(), groups.data(), flags) == 0 && groups[0].rm_eo > 0) {
    std::vector<std::string>& match = matches.emplace_back();
    for (const regmatch_t& group : groups) {
      match.emplace_back(group.rm_so < 0 ? ""
                                         : std::string(rest + group.rm_so, rest + group.rm_eo));
    }
    rest += groups[0].rm_eo;
    flags = REG_NOTBOL;
  }
  regfree(&regex);
  return matches;
}

}  // namespace addrtool::testing
