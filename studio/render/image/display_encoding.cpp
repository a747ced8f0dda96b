#include "studio/render/image/display_encoding.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>

#include "studio/util/color.h"

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
    return top == 255 ? encodeByte(linear) : levelOf(toEncoded(linear), top);
}

/// A channel of a pixel which is laid over others: scene-linear, premultiplied.
struct Layer {
    double color;
    double through;  ///< fraction of what is behind that shows

    /// What a display shows, in steps of 255, with `behind` behind.
    double shownOver(double behind) const {
        return toEncoded(std::clamp(color + through * behind, 0.0, 1.0)) * 255;
    }
};

/// As levels of 8 bits say it.
Layer layerOf(unsigned level, unsigned alpha) {
    const double covered = alpha / 255.0;
    return {toLinear(level / 255.0) * covered, 1 - covered};
}

/// By how many steps of 255 a layer shows more than another, with the darkest and the
/// brightest behind: with anything else it is no further off.
struct Excess {
    double overBlack;
    double overWhite;

    Excess(const Layer& is, const Layer& should)
        : overBlack(is.shownOver(0) - should.shownOver(0)),
          overWhite(is.shownOver(1) - should.shownOver(1)) {}
    double worst() const { return std::max(std::abs(overBlack), std::abs(overWhite)); }
};

/// The level which with that alpha comes nearest to `wanted`, whatever is behind.
unsigned nearestLevel(const Layer& wanted, unsigned alpha) {
    const auto excess = [&](unsigned level) { return Excess(layerOf(level, alpha), wanted); };
    unsigned low = 0;
    unsigned high = 255;
    while (low < high) {
        const unsigned middle = (low + high) / 2;
        const Excess at = excess(middle);
        if (at.overBlack + at.overWhite < 0) {
            low = middle + 1;
        } else {
            high = middle;
        }
    }
    const bool isLess = low > 0 && excess(low - 1).worst() < excess(low).worst();
    return isLess ? low - 1 : low;
}

using Pixel = std::array<unsigned, 4>;

double worstError(const Pixel& pixel, const std::array<Layer, 3>& wanted) {
    double worst = 0;
    for (std::size_t i = 0; i < 3; ++i)
        worst = std::max(worst, Excess(layerOf(pixel[i], pixel[3]), wanted[i]).worst());
    return worst;
}

/// Alpha of 8 bits is up to half a step off, which by itself can be six steps of what
/// shows: a display tells dark levels well apart. Where it would be seen, alpha and
/// colour are chosen together to come nearest to `rgba` whatever is behind.
void settleBytes(const float rgba[4], unsigned levels[4]) {
    constexpr double kUnseen = 0.5;  // of a step
    const auto alpha = static_cast<double>(rgba[3]);
    std::array<Layer, 3> wanted{};
    for (std::size_t i = 0; i < 3; ++i)
        wanted[i] = {static_cast<double>(rgba[i]), 1 - alpha};
    Pixel best{levels[0], levels[1], levels[2], levels[3]};
    double least = worstError(best, wanted);
    if (least <= kUnseen) return;
    const auto below = static_cast<unsigned>(alpha * 255);
    for (const unsigned covered : {below, below + 1}) {
        Pixel pixel{0, 0, 0, covered};
        for (std::size_t i = 0; i < 3; ++i)
            pixel[i] = nearestLevel(wanted[i], covered);
        const double error = worstError(pixel, wanted);
        if (error >= least) continue;
        least = error;
        best = pixel;
    }
    std::copy(best.begin(), best.end(), levels);
}

}  // namespace

unsigned encodeByte(double linear) {
    static const ByteLevels bytes;
    return bytes.of(linear);
}

void encodeForDisplay(const float rgba[4], bool alpha, unsigned top, unsigned levels[4]) {
    const double coverage = static_cast<double>(rgba[3]);
    const bool seen = !alpha || coverage > 0;
    for (int i = 0; i < 3; ++i) {
        const double linear =
            alpha ? static_cast<double>(rgba[i]) / coverage : static_cast<double>(rgba[i]);
        levels[i] = seen ? levelOfLight(linear, top) : 0;
    }
    if (!alpha) return;
    levels[3] = levelOf(coverage, top);
    if (top == 255 && coverage > 0 && coverage < 1) settleBytes(rgba, levels);
}

}  // namespace tavora::studio
