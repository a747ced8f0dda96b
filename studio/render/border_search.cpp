#include "studio/render/border_search.h"

#include <algorithm>
#include <cmath>

namespace tavora::studio {
namespace {

/// Steps of 255 within which samples show the same colour.
constexpr int kSame = 2;

/// A share is wrong by about a sixth of the slack: by less than from 64 samples spread
/// evenly, even where the border runs along the pixel's sides, and they do best.
constexpr double kFine = 0.025;

/// A bit for each corner of the pixel.
using Corners = std::uint8_t;
constexpr std::array<Imath::V2d, BorderSearch::kCorners> kCornerPlaces = {
    Imath::V2d(0, 0), Imath::V2d(1, 0), Imath::V2d(0, 1), Imath::V2d(1, 1)};
/// How far from the sides a corner is looked at.
constexpr double kInset = 0.04;

/// Whether one of some places lies near a corner, along both sides together.
bool isToldOf(const Imath::V2d& corner, std::span<const Imath::V2d> places, double near) {
    return std::any_of(places.begin(), places.end(), [&](const Imath::V2d& place) {
        return std::abs(place.x - corner.x) + std::abs(place.y - corner.y) <= near;
    });
}

/// Corners with no place nearer than samples lie apart, neither of those before nor of
/// those that come next.
Corners cornersUntold(std::span<const Imath::V2d> before, std::span<const Imath::V2d> next) {
    const double apart = 1 / std::sqrt(static_cast<double>(before.size()));
    unsigned untold = 0;
    for (std::size_t i = 0; i < kCornerPlaces.size(); ++i) {
        const Imath::V2d& corner = kCornerPlaces[i];
        if (!isToldOf(corner, before, apart) && !isToldOf(corner, next, apart)) untold |= 1U << i;
    }
    return static_cast<Corners>(untold);
}

bool isSame(const SeenLevels& a, const SeenLevels& b) {
    return distance(a, b) <= kSame;
}

/// Which of two colours it is; -1: neither, or either.
int whichOf(const SeenLevels& levels, const SeenLevels& near, const SeenLevels& far) {
    const bool isNear = isSame(levels, near);
    if (isNear == isSame(levels, far)) return -1;
    return isNear ? 0 : 1;
}

}  // namespace

std::optional<BorderSearch> BorderSearch::begin(std::span<const Imath::V2d> places,
                                                std::span<const SeenLevels> levels) {
    std::array<Side, 2> sides;
    sides[0].levels = levels.front();
    const auto other = std::find_if_not(levels.begin(), levels.end(), [&](const SeenLevels& seen) {
        return isSame(seen, levels.front());
    });
    if (other == levels.end()) return {};
    sides[1].levels = *other;

    std::array<Imath::V2d, 2> sums{Imath::V2d(0), Imath::V2d(0)};
    std::array<int, 2> counts{};
    for (std::size_t i = 0; i < levels.size(); ++i) {
        const int side = whichOf(levels[i], sides[0].levels, sides[1].levels);
        if (side < 0) return {};
        sums[static_cast<std::size_t>(side)] += places[i];
        ++counts[static_cast<std::size_t>(side)];
    }
    StraightBorder border(sums[0] / counts[0], sums[1] / counts[1]);
    for (std::size_t i = 0; i < levels.size(); ++i) {
        const bool isFar = whichOf(levels[i], sides[0].levels, sides[1].levels) == 1;
        if (!border.add(places[i], isFar)) return {};
    }
    return BorderSearch(sides, border, cornersUntold(places, border.telling()));
}

void BorderSearch::color(int side, const Sight& sight) {
    Side& seen = sides_[static_cast<std::size_t>(side)];
    seen.sum.add(sight);
    ++seen.count;
}

void BorderSearch::color(const Sight& sight) {
    color(sideOf(sight), sight);
}

BorderSearch::Places BorderSearch::nextPlaces() {
    Places next;
    for (const Imath::V2d& place : border_.telling())
        next.at[next.count++] = place;
    for (std::size_t i = 0; i < kCornerPlaces.size(); ++i) {
        if ((corners_ >> i & 1) == 0) continue;
        next.at[next.count++] =
            kCornerPlaces[i] + (Imath::V2d(0.5) - kCornerPlaces[i]) * (2 * kInset);
    }
    corners_ = 0;
    return next;
}

bool BorderSearch::add(const Imath::V2d& place, const Sight& sight) {
    const int side = sideOf(sight);
    if (side < 0) return false;
    color(side, sight);
    return border_.add(place, side == 1);
}

int BorderSearch::sideOf(const Sight& sight) const {
    return whichOf(sight.levels, sides_[0].levels, sides_[1].levels);
}

bool BorderSearch::isDone() const {
    return corners_ == 0 && sides_[0].count > 0 && sides_[1].count > 0 && border_.slack() <= kFine;
}

std::array<float, 4> BorderSearch::pixel() const {
    const double share = border_.farShare();
    std::array<float, 4> near{};
    std::array<float, 4> far{};
    sides_[0].sum.develop(sides_[0].count, near.data());
    sides_[1].sum.develop(sides_[1].count, far.data());
    std::array<float, 4> mixed{};
    for (std::size_t i = 0; i < mixed.size(); ++i) {
        mixed[i] = static_cast<float>(static_cast<double>(near[i]) * (1 - share) +
                                      static_cast<double>(far[i]) * share);
    }
    return mixed;
}

}  // namespace tavora::studio
