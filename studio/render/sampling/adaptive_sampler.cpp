#include "studio/render/sampling/adaptive_sampler.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <memory>
#include <new>
#include <sys/mman.h>
#include <type_traits>

namespace tavora::studio {
namespace {

/// Steps of 255 that samples may lie apart before more are taken: on one surface,
/// where shading may just be smooth, and where several meet.
constexpr int kOnOneSurface = 5;
constexpr int kAcrossSurfaces = 2;

/// Cosine of the angle between normals that makes a crease.
constexpr float kCrease = 0.9F;

void widen(PixelState& pixel, const Pixel8& encoded) {
    for (std::size_t i = 0; i < 4; ++i) {
        pixel.min[i] = std::min(pixel.min[i], encoded[i]);
        pixel.max[i] = std::max(pixel.max[i], encoded[i]);
    }
}

/// To compare in one go.
std::uint32_t asWord(const Pixel8& encoded) {
    return std::bit_cast<std::uint32_t>(encoded);
}

/// How far what both show lies apart at most.
int distance(const PixelState& a, const PixelState& b) {
    // Most pixels of a picture lie within a zone.
    const std::uint32_t level = asWord(a.min);
    if (level == asWord(b.min) && level == asWord(a.max) && level == asWord(b.max)) return 0;
    int largest = 0;
    for (std::size_t i = 0; i < 4; ++i) {
        const int least = std::min(a.min[i], b.min[i]);
        largest = std::max(largest, std::max(a.max[i], b.max[i]) - least);
    }
    return largest;
}

int toleranceOf(const PixelState& a, const PixelState& b) {
    return a.isMixed || b.isMixed || a.mesh() != b.mesh() ? kAcrossSurfaces : kOnOneSurface;
}

bool isCrease(const PixelState& pixel, const FirstSurface& other) {
    return other.mesh != pixel.mesh() || other.normal.dot(pixel.normal) < kCrease;
}

/// The part of `whole` within `by` pixels of the window.
PixelBox grown(const PixelBox& window, int by, const PixelBox& whole) {
    return {std::max(window.left - by, whole.left), std::max(window.top - by, whole.top),
            std::min(window.right + by, whole.right), std::min(window.bottom + by, whole.bottom)};
}

bool isIn(const PixelBox& box, int x, int y) {
    return x >= box.left && x < box.right && y >= box.top && y < box.bottom;
}

PixelState* allocate(const PixelBox& area) {
    static_assert(std::is_trivially_destructible_v<PixelState>);
    const auto count =
        static_cast<std::size_t>(area.width()) * static_cast<std::size_t>(area.height());
    const std::size_t size = count * sizeof(PixelState);
    void* const room = ::operator new(size, AdaptiveSampler::kAlignment);
    // A hint: large pages take fewer faults to fill. Whether it is taken does not matter.
    static_cast<void>(madvise(room, size, MADV_HUGEPAGE));
    return static_cast<PixelState*>(room);
}

/// How far from a side a sample is near it, in pixels: four of sixteen are.
constexpr double kNear = 0.25;

/// The first decisions look at neighbours, each at those of pixels one further away.
constexpr int kDecisionsWithNeighbours = 2;
/// What the first pass saw of the lights is looked at from one pixel further still.
constexpr int kReach = kDecisionsWithNeighbours + 1;

/// One number for a colour, to tell whether it is another one.
std::uint8_t brightness(const Pixel8& encoded) {
    const int sum = 3 * encoded[0] + 5 * encoded[1] + 2 * encoded[2] + 6 * encoded[3];
    return static_cast<std::uint8_t>(sum / 16);
}

void widenSides(PixelState& pixel, const Imath::V2d& position, std::uint8_t level) {
    const bool isNear[] = {position.x<kNear, position.x> 1 - kNear,
                           position.y<kNear, position.y> 1 - kNear};
    for (std::size_t side = 0; side < 4; ++side) {
        if (!isNear[side]) continue;
        pixel.minAtSide[side] = std::min(pixel.minAtSide[side], level);
        pixel.maxAtSide[side] = std::max(pixel.maxAtSide[side], level);
    }
}

}  // namespace

AdaptiveSampler::AdaptiveSampler(const PixelBox& window, const PixelBox& whole)
    : window_(window), area_(grown(window, kReach, whole)), pixels_(allocate(area_)) {}

void AdaptiveSampler::begin(const PixelBox& tile) {
    const PixelBox near = grown(window_, kDecisionsWithNeighbours, area_);
    for (int y = tile.top; y < tile.bottom; ++y) {
        for (int x = tile.left; x < tile.right; ++x) {
            PixelState& pixel = *std::construct_at(&pixels_[offset(x, y)]);
            pixel.needsSamples = isIn(near, x, y);
        }
    }
}

void AdaptiveSampler::add(int x, int y, std::span<const Imath::V2d> positions,
                          std::span<const ShadedSample> samples) {
    PixelState& pixel = pixels_[offset(x, y)];
    const bool isFirstPass = pixel.count == 0;
    Pixel8 encoded = samples.front().radiance.encoded;
    if (isFirstPass) {
        const FirstSurface& first = samples.front().first;
        pixel.seen = {first.mesh, first.distance, {}};
        pixel.normal = first.normal;
        pixel.min = pixel.max = encoded;
    }
    widen(pixel, encoded);
    Accumulator sum;
    for (std::size_t i = 0; i < samples.size(); ++i) {
        const ShadedSample& sample = samples[i];
        sum.add(sample.radiance);
        if (asWord(sample.radiance.encoded) != asWord(encoded)) {
            encoded = sample.radiance.encoded;
            widen(pixel, encoded);
        }
        widenSides(pixel, positions[i], brightness(encoded));
        if (isFirstPass && sample.first.mesh == pixel.mesh()) {
            pixel.seen.lights.add(sample.lights);
        }
        if (pixel.count + i < PixelState::kKept) pixel.first[pixel.count + i] = encoded;
        pixel.isMixed |= isCrease(pixel, sample.first);
    }
    for (int i = 0; i < 3; ++i)
        pixel.sum[static_cast<std::size_t>(i)] += static_cast<float>(sum.color[i]);
    pixel.sum[3] += static_cast<float>(sum.alpha);
    pixel.count = static_cast<std::uint16_t>(pixel.count + samples.size());
}

void AdaptiveSampler::finalize(int x, int y, const std::array<float, 4>& rgba) {
    PixelState& pixel = pixels_[offset(x, y)];
    for (std::size_t i = 0; i < 4; ++i)
        pixel.sum[i] = rgba[i] * static_cast<float>(pixel.count);
    pixel.needsSamples = false;
}

bool AdaptiveSampler::differsFromNeighbours(int x, int y) const {
    const PixelState& pixel = at(x, y);
    for (int row = std::max(y - 1, area_.top); row < std::min(y + 2, area_.bottom); ++row) {
        for (int column = std::max(x - 1, area_.left); column < std::min(x + 2, area_.right);
             ++column) {
            const PixelState& other = at(column, row);
            if (distance(pixel, other) > toleranceOf(pixel, other)) return true;
        }
    }
    return false;
}

/// Whether what a neighbour shows near `side`, which it shares with `pixel`, is
/// another colour than the pixel's: an edge between both may go on in there.
bool AdaptiveSampler::isEdgeReaching(const PixelState& pixel, int x, int y,
                                     std::size_t side) const {
    if (!isIn(area_, x, y)) return false;
    const PixelState& other = at(x, y);
    if (other.maxAtSide[side] < other.minAtSide[side]) return false;
    const int least = brightness(pixel.min);
    const int most = brightness(pixel.max);
    return other.maxAtSide[side] - least > kAcrossSurfaces ||
           most - other.minAtSide[side] > kAcrossSurfaces;
}

bool AdaptiveSampler::isEdgeReaching(int x, int y) const {
    const PixelState& pixel = at(x, y);
    return isEdgeReaching(pixel, x + 1, y, 0) || isEdgeReaching(pixel, x - 1, y, 1) ||
           isEdgeReaching(pixel, x, y + 1, 2) || isEdgeReaching(pixel, x, y - 1, 3);
}

bool AdaptiveSampler::needsMore(int x, int y, int decision) const {
    // What a pixel's first few samples missed, its neighbours' may have hit.
    if (decision == 1) return differsFromNeighbours(x, y);
    const PixelState& pixel = at(x, y);
    if (!pixel.needsSamples) return false;
    const bool even = distance(pixel, pixel) <= toleranceOf(pixel, pixel);
    return !even || (decision <= kDecisionsWithNeighbours && isEdgeReaching(x, y));
}

std::size_t AdaptiveSampler::decide(const PixelBox& tile, int decision) {
    std::size_t count = 0;
    // Pixels around the window matter as far as later passes look at them.
    const PixelBox judged = grown(window_, std::max(kDecisionsWithNeighbours - decision, 0), area_);
    for (int y = tile.top; y < tile.bottom; ++y) {
        for (int x = tile.left; x < tile.right; ++x) {
            const bool needs = isIn(judged, x, y) && needsMore(x, y, decision);
            pixels_[offset(x, y)].needsSamples = needs;
            count += needs ? 1U : 0U;
        }
    }
    return count;
}

NeighbourVisibility AdaptiveSampler::visibilityAround(int x, int y) const {
    NeighbourVisibility known;
    known.add(at(x, y).seen);  // first: what finds no room should be the neighbours'
    for (int row = std::max(y - 1, area_.top); row < std::min(y + 2, area_.bottom); ++row) {
        for (int column = std::max(x - 1, area_.left); column < std::min(x + 2, area_.right);
             ++column) {
            if (row != y || column != x) known.add(at(column, row).seen);
        }
    }
    return known;
}

void AdaptiveSampler::resolve(int x, int y, float rgba[4]) const {
    const PixelState& pixel = at(x, y);
    for (std::size_t i = 0; i < 4; ++i)
        rgba[i] = pixel.sum[i] / static_cast<float>(pixel.count);
}

}  // namespace tavora::studio
