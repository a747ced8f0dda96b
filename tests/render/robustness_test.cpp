// What no picture may show: terminator zigzag, acne, a dependence on threads or
// on the order in which triangles come.

#include <algorithm>
#include <atomic>
#include <cmath>
#include <gtest/gtest.h>
#include <stdexcept>
#include <string>
#include <utility>

#include "host/handler.h"
#include "tests/render/probe.h"
#include "tests/render/room.h"

namespace tavora::studio {
namespace {

using Imath::V3d;

/// Lit so that hard shadows and soft ones lie on the wall.
Room litRoom() {
    Room room;
    room.addLights(0.3, 0);
    return room;
}

/// Every pixel alike, or as many samples as each needs, about it.
class Sampling : public ::testing::TestWithParam<bool> {};
INSTANTIATE_TEST_SUITE_P(Robustness, Sampling, ::testing::Bool(),
                         [](const auto& test) { return test.param ? "Adaptive" : "Even"; });

TEST_P(Sampling, IsTheSameOnAnyNumberOfThreadsAndInACrop) {
    const Room test = litRoom();
    RenderOptions options;
    options.width = 100;
    options.height = 74;
    options.samples = 5;
    if (GetParam()) {
        options.mostSamples = 40;
        options.filter = PixelFilter::Tent;
    }
    std::vector<Picture> pictures;
    for (const int threads : {1, 2, 7}) {
        options.threads = threads;
        RenderStats stats;
        pictures.push_back(renderWith(test, roomCamera(), options, TAVORA_MODULE, look(), &stats));
        EXPECT_EQ(stats.pixels, 100U * 74U);
        if (GetParam()) {
            EXPECT_GT(stats.primaryRays, stats.pixels * 7);
            EXPECT_LT(stats.primaryRays, stats.pixels * 30);
        } else {
            EXPECT_EQ(stats.primaryRays, stats.pixels * 5);
        }
        EXPECT_GT(stats.evaluations, 9000U);
        EXPECT_GT(stats.shadowRays, stats.evaluations);
        EXPECT_EQ(pictures.back().rgba, pictures.front().rgba) << threads;
    }
    // And a crop is a part of the whole, also where it cuts an edge or a shadow's.
    options.crop = PixelBox{20, 21, 69, 57};
    for (int i = 0; i < 15; ++i) {
        const Picture crop = renderWith(test, roomCamera(), options, TAVORA_MODULE, look());
        const PixelBox box = *options.crop;
        EXPECT_EQ(crop.window, box);
        for (int y = box.top; y < box.bottom; ++y) {
            EXPECT_TRUE(std::equal(crop.pixel(box.left, y),
                                   crop.pixel(box.left, y) + 4 * (box.right - box.left),
                                   pictures.front().pixel(box.left, y)))
                << box.left << ' ' << y;
        }
        const int left = 10 + i * 37 % 80;
        const int top = 5 + i * 23 % 60;
        options.crop = PixelBox{left, top, left + 1 + i % 5, top + 1 + i % 3};
    }
}

TEST_P(Sampling, ShowsWhatIsPicked) {
    const Room test = litRoom();
    RenderOptions options = squareOptions(40);
    options.samples = 7;
    if (GetParam()) {
        options.mostSamples = 50;
        options.filter = PixelFilter::BlackmanHarris;
    }
    nlohmann::ordered_json oneColor;
    for (int i = 0; i < 5; ++i)
        oneColor["zones[" + std::to_string(i) + "].color"] = {128 / 255.0, 64 / 255.0, 0};
    const Picture picture =
        renderWith(test, frontCamera({0, 0, 1}, 0.3), options, TAVORA_MODULE, look(oneColor));
    for (int y = 0; y < 40; ++y) {
        for (int x = 0; x < 40; ++x) {
            const V3d shown = displayed(picture, x, y) * 255;
            ASSERT_NEAR(shown.x, 128, 1e-4);
            ASSERT_NEAR(shown.y, 64, 1e-4);
            ASSERT_EQ(shown.z, 0);
        }
    }
}

/// Lights a shape from many sides: how many samples face the light by their
/// interpolated normals and get none of it, and how many get it.
struct Verdict {
    int dark = 0;
    int lit = 0;
};

Verdict judge(const std::shared_ptr<Mesh>& mesh, double scale) {
    TestScene test;
    test.addSurface();
    test.addObject(mesh, 0, Imath::M44d().scale(V3d(scale)));
    test.addSun({0, 0, -1});
    auto& sun = const_cast<Light&>(*test.rig.lights[0].light);
    Renderer renderer(test.scene);
    Verdict verdict;
    for (int turn = 0; turn < 9; ++turn) {
        const double angle = 0.1 + 0.33 * turn;
        sun.direction = V3d(-std::sin(angle), -0.3, -std::cos(angle)).normalized();
        const Imath::V3f along(sun.direction);
        const StateBlock block{
            int{kJudge}, int{HOST_SHADER_COLOR | HOST_SHADER_LUMINOUS | HOST_SHADER_DIFFUSE},
            along.x,     along.y,
            along.z,     0.0F};
        const Picture picture =
            renderer.render(frontCamera({0, 0, 2 * scale}, 1.1 * scale), test.rig,
                            shadingFor(test, block), PROBE_MODULE, squareOptions(96), {}, nullptr);
        for (std::size_t i = 0; i < picture.rgba.size(); i += 4) {
            if (picture.rgba[i] > 0) ++verdict.dark;
            if (picture.rgba[i + 1] > 0) ++verdict.lit;
        }
    }
    return verdict;
}

TEST(Robustness, RoundMeshesThrowNoShadowsOnThemselves) {
    for (const auto& [segments, rings] : {std::pair(16, 8), std::pair(7, 5), std::pair(64, 48)}) {
        for (const double scale : {1.0, 1e-3, 1e6}) {
            const Verdict verdict = judge(sphereMesh(1, segments, rings), scale);
            EXPECT_EQ(verdict.dark, 0) << segments << " at " << scale;
            EXPECT_GT(verdict.lit, 10000);
        }
    }
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

TEST(Robustness, TrueShadowsOfAShapeOnItselfStay) {
    const Verdict fine = judge(torusMesh(0.7, 0.3, 400, 200), 1);
    const Verdict coarse = judge(torusMesh(0.7, 0.3, 48, 24), 1);
    EXPECT_GT(fine.dark, 300);
    EXPECT_GT(fine.lit, 8000);
    EXPECT_NEAR(coarse.dark, fine.dark, 0.1 * fine.dark);
}

TEST(Robustness, FloorsHaveNoAcneAtAnyScale) {
    for (const double scale : {1e-3, 1.0, 1e6}) {
        // A floor, lit at a flat angle, seen at a flat angle, far from the origin.
        TestScene test;
        test.addSurface();
        test.addObject(quadMesh(20 * scale), 0, Imath::M44d().translate(V3d(3, 7, 5) * scale));
        test.addSun({1, 0.3, -0.02});
        Camera camera;
        camera.verticalFov = 0.3;
        camera.cameraToWorld = Imath::M44d().rotate(V3d(1.4, 0, 0)) *
                               Imath::M44d().translate(V3d(3.1, 2.2, 6) * scale);
        const Picture picture = renderPlain(test, camera, squareOptions(64));
        for (int y = 32; y < 64; ++y) {
            for (int x = 0; x < 64; ++x)
                ASSERT_GT(picture.pixel(x, y)[0], 0.001F) << scale << ' ' << x << ' ' << y;
        }
    }
}

TEST(Robustness, OfTwoSurfacesInOnePlaceTheFirstIsSeen) {
    // A hundred coloured quads on top of one another, in small triangles.
    TestScene test;
    for (int i = 0; i < 100; ++i) {
        Surface& surface = test.addSurface();
        surface.unlit = true;
        surface.baseColor = i == 0 ? Imath::V4f(1, 0, 0, 1) : Imath::V4f(0, 1, 0, 1);
        for (int cell = 0; cell < 16; ++cell)
            test.addQuad(V3d(cell % 4 - 1.5, cell / 4 - 1.5, 0) * 0.5, 0.25, i);
    }
    const Picture picture = renderPlain(test, frontCamera({0, 0, 5}, 1), squareOptions(61));
    for (int y = 0; y < 61; ++y) {
        for (int x = 0; x < 61; ++x)
            ASSERT_EQ(picture.pixel(x, y)[1], 0) << x << ' ' << y;
    }
}

TEST(Robustness, LightsThatNoSurfaceWorksWithCostNothing) {
    Room test = litRoom();
    for (int i = 0; i < 40; ++i)
        test.addSun({0.1 * i - 2, -1, -1}, V3d(0.02));
    RenderStats stats;
    renderWith(test, roomCamera(), squareOptions(60), TAVORA_MODULE,
               look({{"useAllLights", false}, {"lightList", {test.rig.lights[0].light->name}}}),
               &stats);
    EXPECT_LT(stats.shadowRays, stats.evaluations * 3) << "of 43 lights";
}

TEST(Robustness, StoppingAndWatching) {
    const Room test = litRoom();
    RenderOptions options = squareOptions(100);
    options.threads = 2;
    RenderWatch watch;
    const auto render = [&] {
        const SurfaceShaders plain(kSign + 1);
        Renderer(test.scene).render(roomCamera(), test.rig, plain, {}, options, watch, nullptr);
    };
    double last = 0;
    watch.progress = [&](double done) {
        EXPECT_GE(done, last);
        last = done;
    };
    render();
    EXPECT_EQ(last, 1);
    const std::atomic<bool> stop = true;
    watch.stop = &stop;
    EXPECT_THROW(render(), RenderStopped);
    watch.stop = nullptr;
    watch.progress = [](double) { throw std::runtime_error("enough"); };
    EXPECT_THROW(render(), std::runtime_error);
}

}  // namespace
}  // namespace tavora::studio
