#pragma once

#include <string>

namespace tavora::studio::testing {

/// Presses "Set as Default" on the real panel over and over, with two settings
/// in turn. Prints a line after the first press.
[[noreturn]] void storeDefaultsForever(const std::string& folder);

}  // namespace tavora::studio::testing
