#include "studio/render/border_search.h"

#include <cmath>
#include <gtest/gtest.h>
#include <numbers>
#include <random>
#include <vector>

#include "studio/render/sample_pattern.h"
#include "studio/util/color.h"

namespace tavora::studio {
namespace {

using Imath::V2d;
using Imath::V3d;

constexpr std::size_t kBefore = 12;  // samples, spread evenly

/// Everything on one side of a line is far.
struct HalfPlane {
    V2d normal;
    double offset;

    bool holds(const V2d& place) const { return normal.dot(place) > offset; }

    /// Of the pixel: counted on a fine grid.
    double share() const {
        constexpr int kGrid = 400;
        int count = 0;
        for (int i = 0; i < kGrid * kGrid; ++i)
            count += holds(V2d(i % kGrid + 0.5, i / kGrid + 0.5) / kGrid) ? 1 : 0;
        return static_cast<double>(count) / (kGrid * kGrid);
    }
};

std::vector<HalfPlane> manyBorders() {
    std::mt19937 numbers(7);
    std::uniform_real_distribution<double> between(0, 1);
    std::vector<HalfPlane> borders;
    for (int i = 0; i < 200; ++i) {
        const double turn = 2 * std::numbers::pi * between(numbers);
        const V2d normal(std::cos(turn), std::sin(turn));
        borders.push_back({normal, normal.dot(V2d(between(numbers), between(numbers)))});
    }
    for (const V2d& normal : {V2d(1, 0), V2d(0, -1), V2d(1, 1).normalized()})
        borders.push_back({normal, normal.dot(V2d(0.4, 0.55))});
    return borders;
}

Sight grey(double level) {
    return ColorDecoder().opaque(V3d(level));
}

/// Searches in a pixel that shows `look(place)`. Returns how many samples more that
/// took, and -1 where it was given up.
template <typename Look>
int search(Look look, std::array<float, 4>& pixel) {
    constexpr int kMost = 24;
    const std::vector<V2d> all = growingPattern(64);
    const std::span<const V2d> places(all.data(), kBefore);
    std::vector<SeenLevels> levels;
    for (const V2d& place : places)
        levels.push_back(look(place).levels);
    std::optional<BorderSearch> search = BorderSearch::begin(places, levels);
    if (!search) return -1;
    for (const V2d& place : places)
        search->color(look(place));
    int count = 0;
    while (!search->isDone()) {
        if (count >= kMost) return -1;
        const BorderSearch::Places next = search->nextPlaces();
        for (const V2d& place : next.all()) {
            if (!search->add(place, look(place))) return -1;
        }
        count += static_cast<int>(next.count);
    }
    pixel = search->pixel();
    return count;
}

TEST(BorderSearch, FindsSharesAsWellAsManySamplesByAFew) {
    double error = 0;
    double evenError = 0;
    int found = 0;
    for (const HalfPlane& border : manyBorders()) {
        const auto look = [&](const V2d& place) { return grey(border.holds(place) ? 1 : 0); };
        std::array<float, 4> pixel{};
        const int samples = search(look, pixel);
        if (samples < 0) continue;  // those before all lie on one side
        EXPECT_LE(samples, 20);
        int even = 0;
        for (const V2d& place : samplePattern(64))
            even += border.holds(place) ? 1 : 0;
        const double share = border.share();
        EXPECT_NEAR(static_cast<double>(pixel[0]), share, 0.04);
        EXPECT_EQ(pixel[3], 1);
        error += std::abs(static_cast<double>(pixel[0]) - share);
        evenError += std::abs(even / 64.0 - share);
        ++found;
    }
    EXPECT_GT(found, 150);
    EXPECT_LT(error, evenError);
}

TEST(BorderSearch, MixesInLinearLightWhatEachSideShowsOnAverage) {
    const HalfPlane border{{1, 0}, 0.5};
    std::array<float, 4> pixel{};
    // Two levels apart within a side: still one colour.
    const auto look = [&](const V2d& place) {
        return grey((border.holds(place) ? 200 : 40) / 255.0 + (place.y > 0.5 ? 1 : -1) / 255.0);
    };
    ASSERT_GE(search(look, pixel), 0);
    EXPECT_NEAR(static_cast<double>(pixel[0]), (toLinear(200 / 255.0) + toLinear(40 / 255.0)) / 2,
                0.02);
    // Half the pixel may show nothing at all.
    const auto edge = [&](const V2d& place) { return border.holds(place) ? grey(0.5) : Sight{}; };
    ASSERT_GE(search(edge, pixel), 0);
    EXPECT_NEAR(static_cast<double>(pixel[3]), 0.5, 0.02);
    EXPECT_NEAR(static_cast<double>(pixel[0]), toLinear(0.5) / 2, 0.01);
}

TEST(BorderSearch, GivesUpWhatIsNoBorderBetweenTwoColours) {
    std::array<float, 4> pixel{};
    const auto even = [](const V2d&) { return grey(0.5); };
    const auto strip = [](const V2d& at) { return grey(std::abs(at.x - 0.5) < 0.2 ? 1 : 0); };
    const auto corner = [](const V2d& at) { return grey(at.x > 0.4 && at.y > 0.4 ? 1 : 0); };
    const auto three = [](const V2d& at) { return grey(std::floor(at.x * 3) / 2); };
    const auto smooth = [](const V2d& at) { return grey(at.x); };
    // Of which the samples before show one colour a side, and those at the border more.
    const auto ring = [](const V2d& at) {
        return grey(std::abs(at.x - 0.5) < 0.02 ? 0.5 : (at.x < 0.5 ? 0 : 1));
    };
    // An ink line, behind which a third colour begins near the corner.
    const auto line = [](const V2d& at) {
        return grey(at.x + at.y > 1.72 ? 1 : (at.x + at.y < 0.8 ? 0.6 : 0));
    };
    EXPECT_LT(search(line, pixel), 0);
    EXPECT_LT(search(even, pixel), 0);
    EXPECT_LT(search(strip, pixel), 0);
    EXPECT_LT(search(corner, pixel), 0);
    EXPECT_LT(search(three, pixel), 0);
    EXPECT_LT(search(smooth, pixel), 0);
    EXPECT_LT(search(ring, pixel), 0);
}

}  // namespace
}  // namespace tavora::studio
