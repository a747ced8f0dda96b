#include "studio/render/display_levels.h"

#include <algorithm>
#include <cmath>

#include "studio/scene/color.h"

namespace tavora::studio {
namespace {

// `value` in 0..1.
unsigned levelOf(double value, unsigned top) {
    if (!(value > 0)) return 0;
    return static_cast<unsigned>(std::floor(std::min(value, 1.0) * top + 0.5));
}

}  // namespace

void displayLevels(const float rgba[4], bool alpha, unsigned top, unsigned levels[4]) {
    const double coverage = static_cast<double>(rgba[3]);
    const bool seen = !alpha || coverage > 0;
    for (int i = 0; i < 3; ++i) {
        const double linear =
            alpha ? static_cast<double>(rgba[i]) / coverage : static_cast<double>(rgba[i]);
        levels[i] = levelOf(seen ? toEncoded(linear) : 0, top);
    }
    if (alpha) levels[3] = levelOf(coverage, top);
}

}  // namespace tavora::studio
