// Where a picture takes more samples, how many, and what it makes of them.

#include <algorithm>
#include <cmath>
#include <functional>
#include <gtest/gtest.h>
#include <initializer_list>
#include <numbers>
#include <random>
#include <vector>

#include "studio/render/border_search.h"
#include "studio/render/known_shadows.h"
#include "studio/render/pixel_filter.h"
#include "studio/render/refinement.h"
#include "studio/render/sample_pattern.h"
#include "studio/util/color.h"
#include "tests/render/test_scene.h"

namespace tavora::studio {
namespace {

using Imath::V2d;
using Imath::V3d;

/// Balls and a grating that throw the shadows of four lights on a wall.
struct Backyard : TestScene {
    Backyard() {
        addSurface();
        addQuad({0, 0, -2}, 4, 0);
        addObject(sphereMesh(0.8, 48, 24), 0, Imath::M44d().translate(V3d(-1, 0.4, 0)));
        addObject(sphereMesh(0.5, 48, 24), 0, Imath::M44d().translate(V3d(1.1, 0.8, 0.5)));
        for (int bar = 0; bar < 8; ++bar) {
            addObject(quadMesh(0.5), 0,
                      Imath::M44d().scale(V3d(0.12, 2.5, 1)) *
                          Imath::M44d().translate(V3d(0.3 * bar - 0.6, -0.9, -1)));
        }
        addSun({0.5, -0.3, -1}, V3d(0.3));
        addSun({-0.6, 0.2, -1}, V3d(0.2, 0.3, 0.3));
        addSun({0.1, -0.6, -1}, V3d(0.2));
        addLight(LightKind::Point, V3d(0.2)).position = {-1, 0, 5};
        rig.ambient = V3d(0.1);
    }
};

TEST(AdaptiveSampling, IsAsCleanAsManySamplesEverywhereForAFewAPixel) {
    const Backyard test;
    RenderOptions options = squareOptions(100);
    RenderStats stats;
    const auto render = [&](int samples, int most) {
        options.samples = samples;
        options.mostSamples = most;
        return renderPlain(test, frontCamera({0, 0, 8}, 2), options, &stats);
    };
    const auto shadowRaysEach = [&] {
        return static_cast<double>(stats.shadowRays) / static_cast<double>(stats.primaryRays);
    };
    const Picture reference = render(400, 0);
    const double few = meanError(render(4, 0), reference);
    const double even = meanError(render(64, 0), reference);
    const double evenShadowRays = shadowRaysEach();
    const double adaptive = meanError(render(4, 64), reference);
    EXPECT_LT(adaptive, 1.1 * even);
    EXPECT_GT(few, 3 * even);
    EXPECT_LT(stats.primaryRays, stats.pixels * 40);
    EXPECT_LT(shadowRaysEach(), 0.5 * evenShadowRays) << "what neighbours agree on is traced again";
}

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

/// Searches in a pixel that shows `look(place)`, after twelve samples spread evenly.
/// Returns how many more that took, and -1 where it was given up.
int search(const std::function<Sight(const V2d&)>& look, std::array<float, 4>& pixel) {
    constexpr int kMost = 24;
    const std::vector<V2d> all = growingPattern(64);
    const std::span<const V2d> places(all.data(), 12);
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
    struct Case {
        const char* name;
        std::function<double(const V2d& at)> level;
    };
    const Case cases[] = {
        {"even", [](const V2d&) { return 0.5; }},
        {"a strip", [](const V2d& at) { return std::abs(at.x - 0.5) < 0.2 ? 1.0 : 0.0; }},
        {"a corner", [](const V2d& at) { return at.x > 0.4 && at.y > 0.4 ? 1.0 : 0.0; }},
        {"three colours", [](const V2d& at) { return std::floor(at.x * 3) / 2; }},
        {"smooth", [](const V2d& at) { return at.x; }},
        // Of which the samples before show one colour a side, and those at the border more.
        {"a thin line",
         [](const V2d& at) { return std::abs(at.x - 0.5) < 0.02 ? 0.5 : (at.x < 0.5 ? 0 : 1); }},
        {"a third colour near the corner behind a line",
         [](const V2d& at) { return at.x + at.y > 1.72 ? 1 : (at.x + at.y < 0.8 ? 0.6 : 0); }},
    };
    std::array<float, 4> pixel{};
    for (const Case& one : cases) {
        const auto look = [&](const V2d& at) { return grey(one.level(at)); };
        EXPECT_LT(search(look, pixel), 0) << one.name;
    }
}

constexpr PixelBox kArea{0, 0, 9, 9};

/// One round of samples whose grey at a place in the picture is `shade`. Returns how
/// many pixels want more.
template <typename Shade>
std::size_t sample(Refinement& refinement, Shade shade) {
    ColorDecoder decoder;
    refinement.begin(kArea);
    for (int y = 0; y < kArea.bottom; ++y) {
        for (int x = 0; x < kArea.right; ++x) {
            std::vector<ViewSample> samples;
            const std::vector<V2d> places = growingPattern(4);
            for (const V2d& place : places)
                samples.push_back(
                    {decoder.opaque(V3d(shade(x + place.x, y + place.y))), {0, 1, {0, 0, 1}}});
            refinement.add(x, y, places, samples);
        }
    }
    return refinement.decide(kArea, 1);
}

TEST(Refinement, TakesMoreAboutAStepAndNowhereElse) {
    Refinement smooth(kArea, kArea);
    EXPECT_EQ(sample(smooth, [](double x, double y) { return (2.5 * x + 50) / 255 + 0.001 * y; }),
              0U);
    Refinement step(kArea, kArea);
    // Between the last sample of a pixel and the first of the next.
    sample(step, [](double x, double) { return x < 4.95 ? 0.2 : 0.8; });
    for (int x = 0; x < 9; ++x)
        EXPECT_EQ(step.at(x, 4).wanting, x == 4 || x == 5) << x;
    Refinement dot(kArea, kArea);  // which one sample of one pixel met
    const auto isDot = [](double at) { return std::abs(at - 4.125) < 0.02; };
    EXPECT_EQ(sample(dot, [&](double x, double y) { return isDot(x) && isDot(y) ? 1.0 : 0.0; }),
              9U);
}

TEST(Refinement, LeavesSettledPixelsAsTheyAre) {
    Refinement refinement(kArea, kArea);
    sample(refinement, [](double x, double) { return x < 4.6 ? 0.2 : 0.8; });
    refinement.settle(4, 4, {0.25F, 0.5F, 0.75F, 1});
    refinement.decide(kArea, 2);
    EXPECT_FALSE(refinement.at(4, 4).wanting);
    EXPECT_TRUE(refinement.at(4, 5).wanting);
    float rgba[4];
    refinement.develop(4, 4, rgba);
    EXPECT_EQ(std::vector<float>(rgba, rgba + 4), (std::vector<float>{0.25F, 0.5F, 0.75F, 1}));
}

LightsMet lightsMet(std::initializer_list<double> shares) {
    LightsMet met;
    for (std::size_t light = 0; const double share : shares) {
        if (share >= 0) met.note(light, share);
        ++light;
    }
    return met;
}

/// What is known of the first lights at a place; empty: nothing.
std::vector<double> known(const KnownShadows& shadows, std::uint32_t mesh, float distance) {
    const LightsMet* met = shadows.at(mesh, distance);
    if (met == nullptr) return {};
    return {met->share(0), met->share(1), met->share(2), met->share(3)};
}

void add(KnownShadows& shadows, int pixels, const MeshLights& met) {
    for (int i = 0; i < pixels; ++i)
        shadows.add(met);
}

TEST(KnownShadows, TellOfAMeshWhatAllWhoMetItAgreeOn) {
    KnownShadows shadows;
    add(shadows, 5, {7, 10, lightsMet({1, 0, 1, -1})});
    EXPECT_TRUE(known(shadows, 7, 10).empty());  // five may all miss an edge
    shadows.add({7, 10.1F, lightsMet({1, 0, 1, -1})});
    EXPECT_EQ(known(shadows, 7, 10), (std::vector<double>{1, 0, 1, -1}));
    shadows.add({});
    shadows.add({7, 9.9F, lightsMet({1, 0, 0, 0.5})});
    EXPECT_EQ(known(shadows, 7, 10), (std::vector<double>{1, 0, -1, -1}));
    EXPECT_TRUE(known(shadows, 8, 10).empty());
    for (std::uint32_t mesh = 10; mesh < 30; ++mesh)
        add(shadows, 9, {mesh, 1, lightsMet({1, 1, 1, 1})});
    EXPECT_FALSE(known(shadows, 10, 1).empty());
    EXPECT_TRUE(known(shadows, 29, 1).empty());  // of a few meshes only
}

TEST(KnownShadows, KeepApartWhatOneMeshShowsInFrontOfItself) {
    KnownShadows shadows;
    add(shadows, 6, {7, 10, lightsMet({1, 1, 1, 1})});
    add(shadows, 7, {7, 11, lightsMet({0, 0, 0, 0})});
    EXPECT_EQ(known(shadows, 7, 10), (std::vector<double>{1, 1, 1, 1}));
    EXPECT_TRUE(known(shadows, 7, 10.5F).empty());
    EXPECT_TRUE(known(shadows, 7, 11).empty());  // slivers beside what is in front
    shadows.add({7, 11, lightsMet({0, 0, 0, 0})});
    EXPECT_EQ(known(shadows, 7, 11), (std::vector<double>{0, 0, 0, 0}));
}

TEST(GrowingPattern, EachBeginningIsEvenAndAboutTheCentre) {
    const std::vector<V2d> places = growingPattern(64);
    for (const std::size_t count : {4U, 16U, 64U}) {
        std::vector<int> rows(count);
        V2d mean(0);
        for (std::size_t i = 0; i < count; ++i) {
            ++rows[static_cast<std::size_t>(places[i].y * static_cast<double>(count))];
            mean += places[i] / static_cast<double>(count);
        }
        EXPECT_EQ(std::count(rows.begin(), rows.end(), 1), static_cast<std::ptrdiff_t>(count));
        EXPECT_LT((mean - V2d(0.5)).length(), 0.04);
    }
}

TEST(PixelFilters, SpreadSamplesAsTheyWeigh) {
    // Share of the weight within the pixel itself, along one axis.
    const std::pair<PixelFilter, double> filters[] = {
        {PixelFilter::Box, 1}, {PixelFilter::Tent, 0.75}, {PixelFilter::BlackmanHarris, 0.7628}};
    for (const auto& [filter, expected] : filters) {
        int within = 0;
        double mean = 0;
        for (int i = 0; i < 1000; ++i) {
            const double x = spreadAsFilter(filter, {(i + 0.5) / 1000, 0.5}).x;
            within += x >= 0 && x <= 1 ? 1 : 0;
            mean += x / 1000;
        }
        EXPECT_NEAR(within / 1000.0, expected, 0.002);
        EXPECT_NEAR(mean, 0.5, 1e-6);
    }
}

}  // namespace
}  // namespace tavora::studio
