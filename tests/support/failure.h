// What a call raises.
#pragma once

#include <functional>
#include <stdexcept>
#include <string>

namespace addrtool::testing {

/// The message of the std::runtime_error that the function raises, or "" if it raises none.
inline std::string failureOf(const std::function<void()>& function) {
  try {
    function();
    return "";
  } catch (const std::runtime_error& failure) {
    return failure.what();
  }
}

}  // namespace addrtool::testing
