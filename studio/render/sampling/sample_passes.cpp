#include "studio/render/sampling/sample_passes.h"

#include <algorithm>
#include <bit>

#include "studio/render/sampling/pixel_filter.h"
#include "studio/render/sampling/sample_pattern.h"

namespace tavora::studio {
namespace {

/// Enough samples to tell what meets in a pixel.
constexpr std::size_t kProbes = 9;

/// Samples after a pass with so many before: about four times as many, a power of
/// two if it can be: by these their sequence is most even.
std::size_t afterwards(std::size_t before) {
    return std::max(kProbes, std::bit_floor(before * 4));
}

/// So many kinds of patterns are enough for pixels that lie side by side.
constexpr int kKinds = 16;

}  // namespace

std::vector<SampleRange> adaptivePasses(const RenderOptions& options) {
    const auto most = static_cast<std::size_t>(options.maxSamples);
    const auto least = static_cast<std::size_t>(options.samples);
    const std::size_t first = (least + 1) / 2;
    std::vector<SampleRange> passes{{0, first}};
    if (least > first) passes.push_back({first, least});
    while (passes.back().last < most) {
        const std::size_t before = passes.back().last;
        passes.push_back({before, std::min(most, afterwards(before))});
    }
    return passes;
}

std::vector<std::vector<Imath::V2d>> patternsOf(const RenderOptions& options) {
    std::vector<Imath::V2d> pattern =
        isAdaptive(options) ? sequence02(options.maxSamples) : hammersleyPattern(options.samples);
    for (Imath::V2d& position : pattern)
        position = spreadAsFilter(options.filter, position);
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
