// Where pictures take more samples, and what none may show: terminator zigzag, acne, a dependence
// on threads, on neighbours or on the order in which triangles come.

#include <algorithm>
#include <atomic>
#include <cmath>
#include <gtest/gtest.h>
#include <stdexcept>
#include <string>
#include <utility>

#include "studio/render/surface/facet.h"
#include "tests/render/test_scene.h"

namespace tavora::studio {
namespace {

using Imath::V3d;

/// Lit so that hard shadows and soft ones lie on the wall.
Room litRoom() {
    Room room;
    room.addLights(0.3, 0);
    return room;
}

bool isPartOf(const Picture& part, const Picture& whole) {
    const PixelBox& box = part.window;
    for (int y = box.top; y < box.bottom; ++y) {
        const float* const row = part.pixel(box.left, y);
        if (!std::equal(row, row + 4 * box.width(), whole.pixel(box.left, y))) return false;
    }
    return true;
}

/// Every pixel alike, or as many samples as each needs, about it.
class Sampling : public ::testing::TestWithParam<bool> {};
INSTANTIATE_TEST_SUITE_P(Robustness, Sampling, ::testing::Bool(),
                         [](const auto& test) { return test.param ? "Adaptive" : "Even"; });

TEST_P(Sampling, IsTheSameOnAnyNumberOfThreads) {
    const Room test = litRoom();
    RenderOptions options;
    options.width = 100;
    options.height = 74;
    options.samples = 5;
    if (GetParam()) {
        options.maxSamples = 40;
        options.filter = PixelFilter::Tent;
    }
    Picture first;
    for (const int threads : {1, 2, 7}) {
        options.threads = threads;
        RenderStats stats;
        const Picture picture =
            renderWith(test, roomCamera(), options, TAVORA_MODULE, look(), &stats);
        if (threads == 1) first = picture;
        EXPECT_EQ(picture.rgba, first.rgba) << threads;
        EXPECT_EQ(stats.pixels, 100U * 74U);
        EXPECT_GE(stats.primaryRays, stats.pixels * (GetParam() ? 7 : 5));
        EXPECT_LE(stats.primaryRays, stats.pixels * (GetParam() ? 30 : 5));
        EXPECT_GT(stats.evaluations, 9000U);
        EXPECT_GT(stats.shadowRays, stats.evaluations);
    }
}

/// Small crops, of edges, of shadows' and of what is thin. They cut what is rendered, and
/// so which rays are neighbours.
TEST_P(Sampling, IsTheSameInSmallCrops) {
    const Shapes test(false);
    Renderer renderer(test.scene);
    const SurfaceShaders plain(test.scene.surfaces.size());
    RenderOptions options = squareOptions(64);
    options.samples = 4;
    if (GetParam()) options.maxSamples = 64;
    const auto render = [&] {
        return renderer.render(roomCamera(), test.lightSet, plain, {}, options, {}, nullptr);
    };
    const Picture whole = render();
    for (int i = 0; i < 150; ++i) {
        const int left = i * 37 % 60;
        const int top = i * 23 % 60;
        options.crop = PixelBox{left, top, left + 1 + i % 5, top + 1 + i % 3};
        ASSERT_TRUE(isPartOf(render(), whole)) << left << ' ' << top;
    }
}

/// A view that turned finds the facets that the one before left.
TEST(FacetCache, TellsTheSidesOfATriangleApart) {
    QuadScene test;
    test.surface().doubleSided = true;
    const SceneIndex index(test.scene);
    const RayScene scene(index);
    FacetCache facets(scene, 8);
    for (const double side : {1.0, -1.0, 1.0}) {
        Ray ray;
        ray.origin = V3d(0.2, 0.1, 3 * side);
        ray.direction = V3d(0, 0, -side);
        Hit hit;
        ASSERT_TRUE(scene.nextHit(ray, {}, hit));
        facets.reserve(1);
        const Facet& facet = facets[facets.numberAt(ray, hit)];
        EXPECT_EQ(facet.normal, V3d(0, 0, side));
        EXPECT_EQ(facet.eye.position, ray.origin);
    }
}

/// How many pixels of a mesh, lit from many sides, its own shadow darkens.
int ownShadows(const std::shared_ptr<Mesh>& mesh, double scale) {
    TestScene test;
    test.addSurface();
    test.addObject(mesh, 0, Imath::M44d().scale(V3d(scale)));
    int dark = 0;
    for (int turn = 0; turn < 9; ++turn) {
        const double angle = 0.1 + 0.33 * turn;
        test.lightSet.lights.clear();
        test.addSun({-std::sin(angle), -0.3, -std::cos(angle)});
        const auto render = [&](bool selfShadow) {
            test.scene.surfaces[0].selfShadow = selfShadow;
            return renderPlain(test, frontCamera({0, 0, 2 * scale}, 1.1 * scale), squareOptions(96))
                .rgba;
        };
        const std::vector<float> open = render(false);
        const std::vector<float> shadowed = render(true);
        for (std::size_t i = 0; i < open.size(); i += 4)
            dark += shadowed[i] != open[i] ? 1 : 0;
    }
    return dark;
}

TEST(Robustness, RoundMeshesThrowNoShadowsOnThemselvesButTrueOnes) {
    for (const double scale : {1.0, 1e-3, 1e6}) {
        EXPECT_EQ(ownShadows(sphereMesh(1, 16, 8), scale), 0) << scale;
        EXPECT_EQ(ownShadows(sphereMesh(1, 7, 5), scale), 0) << scale;
        EXPECT_EQ(ownShadows(sphereMesh(1, 64, 48), scale), 0) << scale;
        EXPECT_EQ(ownShadows(quadMesh(1), scale), 0) << "acne at " << scale;
    }
    const int fine = ownShadows(torusMesh(0.7, 0.3, 400, 200), 1);
    EXPECT_GT(fine, 300);
    EXPECT_NEAR(ownShadows(torusMesh(0.7, 0.3, 48, 24), 1), fine, 0.1 * fine);
}

TEST(Robustness, LightsWithASizeShineOnRoundMeshesAsThoseWithout) {
    TestScene test;
    test.addSurface();
    test.addObject(sphereMesh(1, 16, 8), 0);
    test.addSun({-0.8, -0.3, -0.4}, V3d(0.5));
    test.addLight(LightKind::Point, V3d(0.5)).position = {-2, 3, 2};
    const auto picture = [&test] {
        return renderPlain(test, frontCamera({0, 0, 2}, 1.1), squareOptions(96));
    };
    const Picture hard = picture();
    test.soften(0.7, 0.8);
    EXPECT_EQ(picture().rgba, hard.rgba);
}

TEST(Robustness, OfTwoSurfacesInOnePlaceTheFirstIsSeen) {
    // Coloured quads on top of one another, in small triangles.
    const auto cell = quadMesh(0.25);
    const auto layers = std::make_shared<Mesh>();
    for (std::uint32_t i = 0; i < 16 * 50; ++i) {
        for (const Imath::V3f& corner : cell->positions) {
            const auto column = static_cast<float>(i % 4);
            const auto row = static_cast<float>(i / 4 % 4);
            layers->positions.push_back(corner + Imath::V3f(column - 1.5F, row - 1.5F, 0) * 0.5F);
        }
        layers->triangles.push_back({4 * i, 4 * i + 1, 4 * i + 2});
        layers->triangles.push_back({4 * i, 4 * i + 2, 4 * i + 3});
    }
    layers->normals.resize(layers->positions.size(), {0, 0, 1});
    layers->colors.resize(16 * 4, {1, 0, 0, 1});
    layers->colors.resize(layers->positions.size(), {0, 1, 0, 1});
    TestScene test;
    test.addSurface().unlit = true;
    test.addObject(layers, 0);
    const Picture picture = renderPlain(test, frontCamera({0, 0, 5}, 1), squareOptions(61));
    for (std::size_t i = 0; i < picture.rgba.size(); i += 4)
        ASSERT_EQ(picture.rgba[i] - picture.rgba[i + 1], 1) << i / 4;
}

TEST(Robustness, StoppingAndWatching) {
    const Room test = litRoom();
    RenderOptions options = squareOptions(100);
    options.threads = 2;
    RenderWatch watch;
    const auto render = [&] {
        const SurfaceShaders plain(kSign + 1);
        Renderer(test.scene)
            .render(roomCamera(), test.lightSet, plain, {}, options, watch, nullptr);
    };
    for (const int most : {0, 16}) {
        options.maxSamples = most;
        double last = 0;
        watch.progress = [&](double done) {
            EXPECT_GE(done, last);
            last = done;
        };
        render();
        EXPECT_EQ(last, 1);
    }
    const std::atomic<bool> stop = true;
    watch.stop = &stop;
    EXPECT_THROW(render(), RenderStopped);
    watch.stop = nullptr;
    watch.progress = [](double) { throw std::runtime_error("enough"); };
    EXPECT_THROW(render(), std::runtime_error);
}

/// How far two square pictures lie apart in display values: on average, and at most.
std::pair<double, double> errorOf(const Picture& a, const Picture& b) {
    std::pair<double, double> error;
    for (int i = 0; i < a.width * a.width; ++i) {
        const int x = i % a.width;
        const int y = i / a.width;
        const double here = (displayed(a, x, y) - displayed(b, x, y)).length();
        error.first += here / (a.width * a.width);
        error.second = std::max(error.second, here);
    }
    return error;
}

TEST(AdaptiveSampling, IsAsCleanAsManySamplesEverywhereForAFewAPixel) {
    for (const bool unlit : {false, true}) {
        const Shapes test(unlit);
        RenderStats stats;
        const auto render = [&](int samples, int most) {
            RenderOptions options = squareOptions(64);
            options.samples = samples;
            options.maxSamples = most;
            return renderPlain(test, roomCamera(), options, &stats);
        };
        const Picture reference = render(400, 0);
        const double few = errorOf(render(4, 0), reference).first;
        const double even = errorOf(render(64, 0), reference).first;
        const RenderStats evenStats = stats;
        const auto [adaptive, most] = errorOf(render(4, 64), reference);
        EXPECT_LT(adaptive, unlit ? 0.8 * even : 0.9 * even);
        EXPECT_LT(most, 0.13);
        EXPECT_GT(few, 5 * even);
        EXPECT_LT(stats.primaryRays, stats.pixels * (unlit ? 22 : 40));
        // What neighbours agree on is not traced again.
        EXPECT_LE(stats.shadowRays * evenStats.primaryRays * 4,
                  evenStats.shadowRays * stats.primaryRays * 3);
    }
}

TEST(AdaptiveSampling, FiltersSpreadSamplesAsTheyWeighLikeEvenOnes) {
    QuadScene test;
    test.surface().unlit = true;
    // Share of the weight that lies beyond one side of the pixel.
    const std::pair<PixelFilter, double> filters[] = {
        {PixelFilter::Box, 0}, {PixelFilter::Tent, 0.125}, {PixelFilter::BlackmanHarris, 0.1186}};
    for (const auto& [filter, share] : filters) {
        for (const int most : {0, 1024}) {
            RenderOptions options = squareOptions(4);
            options.samples = most > 0 ? 4 : 1024;
            options.maxSamples = most;
            options.filter = filter;
            const Picture picture = renderPlain(test, frontCamera({-1, 0, 5}, 1), options);
            EXPECT_NEAR(picture.pixel(1, 1)[0], share, 0.004);
            EXPECT_NEAR(picture.pixel(2, 1)[0], 1 - share, 0.004);
            EXPECT_EQ(picture.pixel(0, 1)[0], 0);
        }
    }
}

}  // namespace
}  // namespace tavora::studio
