#include "studio/render/refinement.h"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>

#include "studio/render/pixel_filter.h"
#include "studio/render/sample_pattern.h"
#include "tests/render/test_scene.h"

namespace tavora::studio {
namespace {

using Imath::V2d;
using Imath::V3d;

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

TEST(Refinement, LeavesSmoothShadingAlone) {
    Refinement refinement(kArea, kArea);
    EXPECT_EQ(
        sample(refinement, [](double x, double y) { return (2.5 * x + 50) / 255 + 0.001 * y; }),
        0U);
}

TEST(Refinement, TakesMoreAboutAStepAndNowhereElse) {
    Refinement refinement(kArea, kArea);
    // Between the last sample of a pixel and the first of the next.
    sample(refinement, [](double x, double) { return x < 4.95 ? 0.2 : 0.8; });
    for (int x = 0; x < 9; ++x)
        EXPECT_EQ(refinement.at(x, 4).wanting, x == 4 || x == 5) << x;
}

TEST(Refinement, FindsWhatOnlyANeighbourMet) {
    Refinement refinement(kArea, kArea);
    EXPECT_EQ(sample(refinement,
                     [](double x, double y) {
                         return std::abs(x - 4.125) < 0.02 && std::abs(y - 4.125) < 0.02 ? 1.0
                                                                                         : 0.0;
                     }),
              9U);
}

TEST(Refinement, LeavesSettledPixelsAsTheyAre) {
    Refinement refinement(kArea, kArea);
    sample(refinement, [](double x, double) { return x < 4.6 ? 0.2 : 0.8; });
    refinement.settle(4, 4, {0.25F, 0.5F, 0.75F, 1});
    EXPECT_FALSE(refinement.at(4, 4).wanting);
    refinement.decide(kArea, 2);
    EXPECT_FALSE(refinement.at(4, 4).wanting);
    EXPECT_TRUE(refinement.at(4, 5).wanting);
    float rgba[4];
    refinement.develop(4, 4, rgba);
    EXPECT_EQ(std::vector<float>(rgba, rgba + 4), (std::vector<float>{0.25F, 0.5F, 0.75F, 1}));
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
        EXPECT_NEAR(mean.x, 0.5, 0.03);
        EXPECT_NEAR(mean.y, 0.5, 0.03);
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

TEST(AdaptiveSampling, IsAsCleanAsManySamplesEverywhereForAFewAPixel) {
    TestScene test;
    test.addSurface().baseColor = {1, 1, 1, 1};
    test.rig.ambient = V3d(1);
    test.addObject(sphereMesh(1, 64, 32), 0);
    const Camera camera = frontCamera({0, 0, 5}, 1.4);
    RenderOptions options = squareOptions(120);
    options.samples = 1024;
    const Picture reference = renderPlain(test, camera, options);
    options.samples = 64;
    const Picture even = renderPlain(test, camera, options);
    options.samples = 4;
    const Picture few = renderPlain(test, camera, options);
    options.mostSamples = 64;
    RenderStats stats;
    const Picture adaptive = renderPlain(test, camera, options, &stats);
    EXPECT_LT(meanError(adaptive, reference), 1.2 * meanError(even, reference));
    EXPECT_GT(meanError(few, reference), 3 * meanError(even, reference));
    EXPECT_LT(stats.primaryRays, stats.pixels * 8);
}

}  // namespace
}  // namespace tavora::studio
