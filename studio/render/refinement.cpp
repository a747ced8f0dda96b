#include "studio/render/refinement.h"

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

void widen(PixelState& pixel, const SeenLevels& levels) {
    for (std::size_t i = 0; i < 4; ++i) {
        pixel.least[i] = std::min(pixel.least[i], levels[i]);
        pixel.most[i] = std::max(pixel.most[i], levels[i]);
    }
}

/// To compare in one go.
std::uint32_t asWord(const SeenLevels& levels) {
    return std::bit_cast<std::uint32_t>(levels);
}

/// How far what both show lies apart at most.
int distance(const PixelState& a, const PixelState& b) {
    // Most pixels of a picture lie within a zone.
    const std::uint32_t level = asWord(a.least);
    if (level == asWord(b.least) && level == asWord(a.most) && level == asWord(b.most)) return 0;
    int largest = 0;
    for (std::size_t i = 0; i < 4; ++i) {
        const int least = std::min(a.least[i], b.least[i]);
        largest = std::max(largest, std::max(a.most[i], b.most[i]) - least);
    }
    return largest;
}

int toleranceOf(const PixelState& a, const PixelState& b) {
    return a.mixed || b.mixed || a.mesh() != b.mesh() ? kAcrossSurfaces : kOnOneSurface;
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

PixelState* roomFor(const PixelBox& area) {
    static_assert(std::is_trivially_destructible_v<PixelState>);
    const auto count =
        static_cast<std::size_t>(area.width()) * static_cast<std::size_t>(area.height());
    const std::size_t size = count * sizeof(PixelState);
    void* const room = ::operator new(size, Refinement::kAlignment);
    // A hint: large pages take fewer faults to fill. Whether it is taken does not matter.
    static_cast<void>(madvise(room, size, MADV_HUGEPAGE));
    return static_cast<PixelState*>(room);
}

/// How far from a side a sample is near it, in pixels: four of sixteen are.
constexpr double kNear = 0.25;

/// Rounds after which neighbours are looked at, each from one pixel further.
constexpr int kRoundsWithNeighbours = 2;
/// What the first round met is looked at from one pixel further still.
constexpr int kReach = kRoundsWithNeighbours + 1;

/// One number for a colour, to tell whether it is another one.
std::uint8_t brightness(const SeenLevels& levels) {
    const int sum = 3 * levels[0] + 5 * levels[1] + 2 * levels[2] + 6 * levels[3];
    return static_cast<std::uint8_t>(sum / 16);
}

void widenSides(PixelState& pixel, const Imath::V2d& place, std::uint8_t level) {
    const bool isNear[] = {place.x<kNear, place.x> 1 - kNear, place.y<kNear, place.y> 1 - kNear};
    for (std::size_t side = 0; side < 4; ++side) {
        if (!isNear[side]) continue;
        pixel.leastAt[side] = std::min(pixel.leastAt[side], level);
        pixel.mostAt[side] = std::max(pixel.mostAt[side], level);
    }
}

}  // namespace

Refinement::Refinement(const PixelBox& window, const PixelBox& whole)
    : window_(window), area_(grown(window, kReach, whole)), pixels_(roomFor(area_)) {}

void Refinement::begin(const PixelBox& tile) {
    const PixelBox wanting = grown(window_, kRoundsWithNeighbours, area_);
    for (int y = tile.top; y < tile.bottom; ++y) {
        for (int x = tile.left; x < tile.right; ++x) {
            PixelState& pixel = *std::construct_at(&pixels_[offset(x, y)]);
            pixel.wanting = isIn(wanting, x, y);
        }
    }
}

void Refinement::add(int x, int y, std::span<const Imath::V2d> places,
                     std::span<const ViewSample> samples) {
    PixelState& pixel = pixels_[offset(x, y)];
    const bool isFirstRound = pixel.count == 0;
    SeenLevels levels = samples.front().sight.levels;
    if (isFirstRound) {
        const FirstSurface& first = samples.front().first;
        pixel.lights = {first.mesh, first.distance, {}};
        pixel.normal = first.normal;
        pixel.least = pixel.most = levels;
    }
    widen(pixel, levels);
    PixelSum sum;
    for (std::size_t i = 0; i < samples.size(); ++i) {
        const ViewSample& sample = samples[i];
        sum.add(sample.sight);
        if (asWord(sample.sight.levels) != asWord(levels)) {
            levels = sample.sight.levels;
            widen(pixel, levels);
        }
        widenSides(pixel, places[i], brightness(levels));
        if (isFirstRound && sample.first.mesh == pixel.mesh()) {
            pixel.lights.lights.note(sample.lights);
        }
        if (pixel.count + i < PixelState::kKept) pixel.first[pixel.count + i] = levels;
        pixel.mixed |= isCrease(pixel, sample.first);
    }
    for (int i = 0; i < 3; ++i)
        pixel.sum[static_cast<std::size_t>(i)] += static_cast<float>(sum.color[i]);
    pixel.sum[3] += static_cast<float>(sum.alpha);
    pixel.count = static_cast<std::uint16_t>(pixel.count + samples.size());
}

void Refinement::settle(int x, int y, const std::array<float, 4>& rgba) {
    PixelState& pixel = pixels_[offset(x, y)];
    for (std::size_t i = 0; i < 4; ++i)
        pixel.sum[i] = rgba[i] * static_cast<float>(pixel.count);
    pixel.wanting = false;
}

bool Refinement::differsFromNeighbours(int x, int y) const {
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
/// another colour than the pixel's: a border between both may go on in there.
bool Refinement::isReached(const PixelState& pixel, int x, int y, std::size_t side) const {
    if (!isIn(area_, x, y)) return false;
    const PixelState& other = at(x, y);
    if (other.mostAt[side] < other.leastAt[side]) return false;
    const int least = brightness(pixel.least);
    const int most = brightness(pixel.most);
    return other.mostAt[side] - least > kAcrossSurfaces ||
           most - other.leastAt[side] > kAcrossSurfaces;
}

bool Refinement::isReached(int x, int y) const {
    const PixelState& pixel = at(x, y);
    return isReached(pixel, x + 1, y, 0) || isReached(pixel, x - 1, y, 1) ||
           isReached(pixel, x, y + 1, 2) || isReached(pixel, x, y - 1, 3);
}

bool Refinement::wantsMore(int x, int y, int round) const {
    // What a pixel's first few samples missed, its neighbours' may have met.
    if (round == 1) return differsFromNeighbours(x, y);
    const PixelState& pixel = at(x, y);
    if (!pixel.wanting) return false;
    const bool even = distance(pixel, pixel) <= toleranceOf(pixel, pixel);
    return !even || (round <= kRoundsWithNeighbours && isReached(x, y));
}

std::size_t Refinement::decide(const PixelBox& tile, int round) {
    std::size_t count = 0;
    // Pixels around the window matter as far as later rounds look at them.
    const PixelBox judged = grown(window_, std::max(kRoundsWithNeighbours - round, 0), area_);
    for (int y = tile.top; y < tile.bottom; ++y) {
        for (int x = tile.left; x < tile.right; ++x) {
            const bool wants = isIn(judged, x, y) && wantsMore(x, y, round);
            pixels_[offset(x, y)].wanting = wants;
            count += wants ? 1U : 0U;
        }
    }
    return count;
}

KnownShadows Refinement::shadowsAbout(int x, int y) const {
    KnownShadows known;
    known.add(at(x, y).lights);  // first: what finds no room should be the neighbours'
    for (int row = std::max(y - 1, area_.top); row < std::min(y + 2, area_.bottom); ++row) {
        for (int column = std::max(x - 1, area_.left); column < std::min(x + 2, area_.right);
             ++column) {
            if (row != y || column != x) known.add(at(column, row).lights);
        }
    }
    return known;
}

void Refinement::develop(int x, int y, float rgba[4]) const {
    const PixelState& pixel = at(x, y);
    for (std::size_t i = 0; i < 4; ++i)
        rgba[i] = pixel.sum[i] / static_cast<float>(pixel.count);
}

}  // namespace tavora::studio
