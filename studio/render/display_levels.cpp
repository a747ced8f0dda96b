#include "studio/render/display_levels.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>

#include "studio/scene/color.h"

namespace tavora::studio {
namespace {

// `value` in 0..1.
unsigned levelOf(double value, unsigned top) {
    if (!(value > 0)) return 0;
    return static_cast<unsigned>(std::floor(std::min(value, 1.0) * top + 0.5));
}

/// Levels of 8 bits by linear value, without a root for each: previews show as
/// many pixels as they shade.
class ByteLevels {
  public:
    ByteLevels() {
        for (unsigned level = 1; level < kLevels; ++level)
            begin_[level] = firstOf(level);
        begin_[kLevels] = std::numeric_limits<double>::infinity();
        unsigned level = 0;
        for (std::size_t step = 0; step <= kSteps; ++step) {
            while (begin_[level + 1] <= static_cast<double>(step) / kSteps)
                ++level;
            atStep_[step] = static_cast<std::uint8_t>(level);
        }
    }

    unsigned of(double linear) const {
        if (!(linear > 0)) return 0;
        if (linear >= 1) return kLevels - 1;
        unsigned level = atStep_[static_cast<std::size_t>(linear * kSteps)];
        while (begin_[level + 1] <= linear)
            ++level;
        return level;
    }

  private:
    static constexpr unsigned kLevels = 256;
    static constexpr std::size_t kSteps = 4096;

    /// The least linear value, as near as numbers lie, of that level.
    static double firstOf(unsigned level) {
        double below = 0;
        double first = 1;
        for (double middle = 0.5; below < middle && middle < first; middle = (below + first) / 2)
            (levelOf(toEncoded(middle), kLevels - 1) < level ? below : first) = middle;
        return first;
    }

    std::array<double, kLevels + 1> begin_{};        ///< by level
    std::array<std::uint8_t, kSteps + 1> atStep_{};  ///< the level where a step begins
};

unsigned levelOfLight(double linear, unsigned top) {
    static const ByteLevels bytes;
    return top == 255 ? bytes.of(linear) : levelOf(toEncoded(linear), top);
}

}  // namespace

void displayLevels(const float rgba[4], bool alpha, unsigned top, unsigned levels[4]) {
    const double coverage = static_cast<double>(rgba[3]);
    const bool seen = !alpha || coverage > 0;
    for (int i = 0; i < 3; ++i) {
        const double linear =
            alpha ? static_cast<double>(rgba[i]) / coverage : static_cast<double>(rgba[i]);
        levels[i] = seen ? levelOfLight(linear, top) : 0;
    }
    if (alpha) levels[3] = levelOf(coverage, top);
}

}  // namespace tavora::studio
