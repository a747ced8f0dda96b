#include "studio/render/sampling/sample_pattern.h"

#include <algorithm>
#include <cmath>
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

/// Second dimension of Sobol's sequence, unscaled.
std::uint32_t sobolBits(std::uint32_t value) {
    std::uint32_t bits = 0;
    for (std::uint32_t direction = 1U << 31U; value != 0; value >>= 1U) {
        if ((value & 1U) != 0) bits ^= direction;
        direction ^= direction >> 1U;
    }
    return bits;
}

/// 1/8, in bits: a quarter of four samples lies about the middle of its quarter.
constexpr std::uint32_t kShift = 1U << 29U;

}  // namespace

std::vector<Imath::V2d> sequence02(int count) {
    const auto size = static_cast<std::uint32_t>(std::max(count, 1));
    const double half = 0.5 / size;
    const std::uint32_t shift = size > 4 ? kShift : 0;
    const auto position = [=](std::uint32_t bits) { return std::ldexp(bits ^ shift, -32) + half; };
    std::vector<Imath::V2d> positions;
    for (std::uint32_t i = 0; i < size; ++i)
        positions.emplace_back(position(mirrorBits(i)), position(sobolBits(i)));
    return positions;
}

std::vector<Imath::V2d> hammersleyPattern(int count) {
    const auto size = static_cast<std::uint32_t>(std::max(count, 1));
    const std::vector<std::uint32_t> ranks = mirroredRanks(size);
    std::vector<Imath::V2d> positions;
    for (std::uint32_t i = 0; i < size; ++i)
        positions.emplace_back((i + 0.5) / size, (ranks[i] + 0.5) / size);
    return positions;
}

}  // namespace tavora::studio
