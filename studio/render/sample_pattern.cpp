#include "studio/render/sample_pattern.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <numeric>

namespace tavora::studio {
namespace {

/// The bits of `value` mirrored: the van der Corput sequence, unscaled.
std::uint32_t mirrorBits(std::uint32_t value) {
    std::uint32_t mirrored = 0;
    for (int bit = 0; bit < 32; ++bit, value >>= 1U)
        mirrored = mirrored << 1U | (value & 1U);
    return mirrored;
}

/// Numbers 0 .. count - 1 in the order of their mirrored bits: Hammersley's
/// points, squeezed into a grid of any size.
std::vector<std::uint32_t> mirroredRanks(std::uint32_t count) {
    std::vector<std::uint32_t> order(count);
    std::iota(order.begin(), order.end(), 0U);
    std::sort(order.begin(), order.end(),
              [](std::uint32_t a, std::uint32_t b) { return mirrorBits(a) < mirrorBits(b); });
    std::vector<std::uint32_t> ranks(count);
    for (std::uint32_t rank = 0; rank < count; ++rank)
        ranks[order[rank]] = rank;
    return ranks;
}

}  // namespace

std::vector<Imath::V2d> samplePattern(int count) {
    const auto size = static_cast<std::uint32_t>(std::max(count, 1));
    const std::vector<std::uint32_t> ranks = mirroredRanks(size);
    std::vector<Imath::V2d> places;
    for (std::uint32_t i = 0; i < size; ++i)
        places.emplace_back((i + 0.5) / size, (ranks[i] + 0.5) / size);
    return places;
}

}  // namespace tavora::studio
