#include "studio/render/sampling/edge_search.h"

#include <algorithm>
#include <cmath>

namespace tavora::studio {
namespace {

/// Steps of 255 within which samples show the same colour.
constexpr int kSame = 2;

/// A fraction is wrong by about a sixth of the uncertainty: by less than from 64 samples spread
/// evenly, even where the edge runs along the pixel's sides, and they do best.
constexpr double kFine = 0.025;

/// A bit for each corner of the pixel.
using Corners = std::uint8_t;
constexpr std::array<Imath::V2d, EdgeSearch::kCorners> kCornerPositions = {
    Imath::V2d(0, 0), Imath::V2d(1, 0), Imath::V2d(0, 1), Imath::V2d(1, 1)};
/// How far from the sides a corner is looked at.
constexpr double kInset = 0.04;

/// Whether one of some positions lies near a corner, along both sides together.
bool isNearSample(const Imath::V2d& corner, std::span<const Imath::V2d> positions, double near) {
    return std::any_of(positions.begin(), positions.end(), [&](const Imath::V2d& position) {
        return std::abs(position.x - corner.x) + std::abs(position.y - corner.y) <= near;
    });
}

/// Corners with no position nearer than samples lie apart, neither of those before nor of
/// those that come next.
Corners cornersWithoutSample(std::span<const Imath::V2d> before, std::span<const Imath::V2d> next) {
    const double apart = 1 / std::sqrt(static_cast<double>(before.size()));
    unsigned lacking = 0;
    for (std::size_t i = 0; i < kCornerPositions.size(); ++i) {
        const Imath::V2d& corner = kCornerPositions[i];
        if (!isNearSample(corner, before, apart) && !isNearSample(corner, next, apart))
            lacking |= 1U << i;
    }
    return static_cast<Corners>(lacking);
}

bool isSame(const Pixel8& a, const Pixel8& b) {
    return distance(a, b) <= kSame;
}

/// Which of two colours it is: 0 or 1; empty where it is neither, or either.
std::optional<std::size_t> sideOfColor(const Pixel8& encoded, const Pixel8& near,
                                       const Pixel8& far) {
    const bool isNear = isSame(encoded, near);
    if (isNear == isSame(encoded, far)) return std::nullopt;
    return isNear ? 0 : 1;
}

}  // namespace

std::optional<EdgeSearch> EdgeSearch::begin(std::span<const Imath::V2d> positions,
                                            std::span<const Pixel8> encoded) {
    std::array<Side, 2> sides;
    sides[0].encoded = encoded.front();
    const auto other = std::find_if_not(encoded.begin(), encoded.end(), [&](const Pixel8& seen) {
        return isSame(seen, encoded.front());
    });
    if (other == encoded.end()) return {};
    sides[1].encoded = *other;

    std::array<Imath::V2d, 2> sums{Imath::V2d(0), Imath::V2d(0)};
    std::array<int, 2> counts{};
    for (std::size_t i = 0; i < encoded.size(); ++i) {
        const auto side = sideOfColor(encoded[i], sides[0].encoded, sides[1].encoded);
        if (!side) return {};
        sums[*side] += positions[i];
        ++counts[*side];
    }
    StraightEdge edge(sums[0] / counts[0], sums[1] / counts[1]);
    for (std::size_t i = 0; i < encoded.size(); ++i) {
        const bool isFar = sideOfColor(encoded[i], sides[0].encoded, sides[1].encoded) == 1U;
        if (!edge.add(positions[i], isFar)) return {};
    }
    return EdgeSearch(sides, edge, cornersWithoutSample(positions, edge.probes()));
}

void EdgeSearch::addColor(std::size_t side, const Radiance& radiance) {
    sides_[side].sum.add(radiance);
    ++sides_[side].count;
}

void EdgeSearch::addColor(const Radiance& radiance) {
    if (const auto side = sideOf(radiance)) addColor(*side, radiance);
}

EdgeSearch::Positions EdgeSearch::nextPositions() {
    Positions next;
    for (const Imath::V2d& position : edge_.probes())
        next.at[next.count++] = position;
    for (std::size_t i = 0; i < kCornerPositions.size(); ++i) {
        if ((corners_ >> i & 1) == 0) continue;
        next.at[next.count++] =
            kCornerPositions[i] + (Imath::V2d(0.5) - kCornerPositions[i]) * (2 * kInset);
    }
    corners_ = 0;
    return next;
}

bool EdgeSearch::add(const Imath::V2d& position, const Radiance& radiance) {
    const auto side = sideOf(radiance);
    if (!side) return false;
    addColor(*side, radiance);
    return edge_.add(position, *side == 1);
}

std::optional<std::size_t> EdgeSearch::sideOf(const Radiance& radiance) const {
    return sideOfColor(radiance.encoded, sides_[0].encoded, sides_[1].encoded);
}

bool EdgeSearch::isDone() const {
    return corners_ == 0 && sides_[0].count > 0 && sides_[1].count > 0 &&
           edge_.uncertainty() <= kFine;
}

std::array<float, 4> EdgeSearch::pixel() const {
    const double fraction = edge_.coverage();
    std::array<float, 4> near{};
    std::array<float, 4> far{};
    sides_[0].sum.resolve(sides_[0].count, near.data());
    sides_[1].sum.resolve(sides_[1].count, far.data());
    std::array<float, 4> mixed{};
    for (std::size_t i = 0; i < mixed.size(); ++i) {
        mixed[i] = static_cast<float>(static_cast<double>(near[i]) * (1 - fraction) +
                                      static_cast<double>(far[i]) * fraction);
    }
    return mixed;
}

}  // namespace tavora::studio
