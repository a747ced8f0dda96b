#pragma once

#include <ImathVec.h>
#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdlib>

namespace tavora::studio {

/// What shows, as a display tells it apart: red, green, blue and alpha, 255 for 1.
using Pixel8 = std::array<std::uint8_t, 4>;

/// Of an opaque, display-referred colour.
inline Pixel8 pixel8Of(const Imath::V3d& color) {
    constexpr double kHalf = 0.5;  // nothing is negative: to cut off is to round
    const auto level = [](double value) {
        return static_cast<std::uint8_t>(std::clamp(value, 0.0, 1.0) * 255 + kHalf);
    };
    return {level(color.x), level(color.y), level(color.z), 255};
}

/// By which the channel that differs most does.
inline int distance(const Pixel8& a, const Pixel8& b) {
    int largest = 0;
    for (std::size_t i = 0; i < a.size(); ++i)
        largest = std::max(largest, std::abs(a[i] - b[i]));
    return largest;
}

}  // namespace tavora::studio
