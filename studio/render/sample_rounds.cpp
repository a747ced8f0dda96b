#include "studio/render/sample_rounds.h"

#include <algorithm>
#include <bit>

#include "studio/render/pixel_filter.h"
#include "studio/render/sample_pattern.h"

namespace tavora::studio {
namespace {

/// Enough samples to tell what meets in a pixel.
constexpr std::size_t kTelling = 9;

/// Samples after a round with so many before: about four times as many, a power of
/// two if it can be: by these their sequence is most even.
std::size_t afterwards(std::size_t before) {
    return std::max(kTelling, std::bit_floor(before * 4));
}

/// So many kinds of patterns are enough for pixels that lie side by side.
constexpr int kKinds = 16;

}  // namespace

std::vector<SampleRun> roundsOf(const RenderOptions& options) {
    const auto most = static_cast<std::size_t>(options.mostSamples);
    const auto least = static_cast<std::size_t>(options.samples);
    const std::size_t first = (least + 1) / 2;
    std::vector<SampleRun> rounds{{0, first}};
    if (least > first) rounds.push_back({first, least});
    while (rounds.back().last < most) {
        const std::size_t before = rounds.back().last;
        rounds.push_back({before, std::min(most, afterwards(before))});
    }
    return rounds;
}

std::vector<std::vector<Imath::V2d>> patternsOf(const RenderOptions& options) {
    std::vector<Imath::V2d> pattern =
        isAdaptive(options) ? growingPattern(options.mostSamples) : samplePattern(options.samples);
    for (Imath::V2d& place : pattern)
        place = spreadAsFilter(options.filter, place);
    std::vector<std::vector<Imath::V2d>> patterns{pattern};
    if (!isAdaptive(options)) return patterns;
    const int kinds = std::min(options.samples, kKinds);
    while (patterns.size() < static_cast<std::size_t>(kinds)) {
        std::rotate(pattern.begin(), pattern.begin() + 1, pattern.begin() + options.samples);
        patterns.push_back(pattern);
    }
    return patterns;
}

}  // namespace tavora::studio
