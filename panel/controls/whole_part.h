#pragma once

#include <limits>

namespace tavora {

/// The integer part of `value`, towards zero. Beyond what an int holds it is the
/// nearest int, and 0 for what is not a number: a record may hold anything.
inline int wholePart(double value) {
    constexpr auto lowest = static_cast<double>(std::numeric_limits<int>::min());
    constexpr auto highest = static_cast<double>(std::numeric_limits<int>::max());
    if (value >= highest) return std::numeric_limits<int>::max();
    if (value <= lowest) return std::numeric_limits<int>::min();
    return value == value ? static_cast<int>(value) : 0;
}

}  // namespace tavora
