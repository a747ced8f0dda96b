// Frames of films: the scene posed anew between renders, passes of modules, motion blur.

#include <cmath>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <random>
#include <string>
#include <vector>

#include "studio/render/image/exposure.h"
#include "studio/services/messages.h"
#include "tests/render/probe.h"
#include "tests/render/test_scene.h"

namespace tavora::studio {
namespace {

using Imath::M44d, Imath::V3d, Imath::V3f;

Picture shot(Renderer& renderer, const TestScene& test, RenderStats* stats = nullptr,
             RenderOptions options = squareOptions(48)) {
    options.samples = 2;
    return renderer.render(roomCamera(), test.lightSet, SurfaceShaders(test.scene.surfaces.size()),
                           {}, options, {}, stats);
}

TEST(Film, ASceneBroughtUpToDateShowsWhatANewOneShows) {
    Room room;
    room.addLights(0, 0);
    auto rubber = std::make_shared<Mesh>(*sphereMesh(0.5, 40, 20));
    const std::vector<V3f> atRest = rubber->positions;
    Object& bent = room.addObject(rubber, kBall, M44d().translate(V3d(0.6, 0.6, 0.2)));
    Renderer film(room.scene, SceneUse::Film);
    RenderStats stats;
    std::vector<std::uint64_t> refits;
    std::vector<std::uint64_t> rebuilds;
    const auto compare = [&](const char* what) {
        film.update();
        Renderer fresh(room.scene);
        EXPECT_EQ(shot(film, room, &stats).rgba, shot(fresh, room).rgba) << what;
        refits.push_back(stats.refits);
        rebuilds.push_back(stats.rebuilds);
    };
    compare("as it was");
    bent.objectToWorld.translate(V3d(-0.3, -0.8, 0.5));
    compare("moved");
    for (V3f& p : rubber->positions)
        p.y += 0.3F * std::sin(3 * p.x);
    ++rubber->revision;
    compare("bent");
    std::mt19937 numbers(1);
    std::shuffle(rubber->positions.begin(), rubber->positions.end(), numbers);
    ++rubber->revision;
    compare("torn to pieces");
    bent.objectToWorld.scale(V3d(-1, 1, 1));
    bent.mirrored = true;
    compare("mirrored");
    rubber->positions = atRest;
    ++rubber->revision;
    room.scene.surfaces[kBall].baseColor = {0, 1, 0, 1};
    room.scene.surfaces[kPane].baseColor.w = 0.7F;
    compare("of other colours");
    room.scene.surfaces[kWall].alphaMode = AlphaMode::Blend;
    room.scene.surfaces[kWall].baseColor.w = 0.5F;
    compare("clear where it was solid");
    const auto hidden = room.scene.objects[1];
    room.scene.objects.erase(room.scene.objects.begin() + 1);
    compare("without an object");
    room.scene.objects.push_back(hidden);
    compare("with it again, as the last");
    EXPECT_THAT(refits, testing::ElementsAre(0, 1, 2, 2, 3, 4, 4, 4, 4));
    EXPECT_EQ(rebuilds[2], 0U);
    EXPECT_EQ(rebuilds[3], 1U) << "boxes that overlap everywhere";
    EXPECT_EQ(rebuilds[5], 1U);
    EXPECT_GT(rebuilds[6], rebuilds[5]) << "all of it";
}

TEST(Film, EachFrameIsAPassOfItsTimeForEverySurface) {
    QuadScene quad;
    quad.addSurface();
    std::string told;
    setMessageSink([&](MessageKind, const std::string& text) { told += text + ";"; });
    const StateBlock block{std::int32_t{kGreet}, std::int32_t{0}, 0.0F, 0.0F, 0.0F, 0.0F};
    SurfaceShaders shading(2, SurfaceShader{"PROBE", true, block});
    {
        Renderer renderer(quad.scene);
        RenderOptions options = squareOptions(4);
        for (const int frame : {7, -8}) {
            options.time = {frame, frame / 2.0};
            renderer.render(frontCamera({0, 0, 5}, 1), quad.lightSet, shading, PROBE_MODULE,
                            options, {}, nullptr);
        }
        EXPECT_EQ(told,
                  "loaded 0;loaded 0;init 0;newTime 7 3.5;init 0;newTime 7 3.5;"
                  "cleanup 0;cleanup 0;"
                  "init 0;newTime -8 -4;init 0;newTime -8 -4;cleanup 0;cleanup 0;");
        told.clear();
        std::get<std::int32_t>(shading[1]->block[1]) = 4;
        renderer.render(frontCamera({0, 0, 5}, 1), quad.lightSet, shading, PROBE_MODULE, options,
                        {}, nullptr);
        EXPECT_THAT(told, testing::StartsWith("loaded 0;loaded 4;init")) << "other settings";
    }
    setMessageSink({});
}

TEST(MotionBlur, SpreadsSamplesOverTheShutterAndLeavesWhatStandsStill) {
    for (const int count : {1, 2, 16, 27, 64}) {
        std::vector<double> times = shutterTimes(count);
        double sumOfFirstHalf = 0;
        for (int i = 0; i < count / 2; ++i)
            sumOfFirstHalf += times[static_cast<std::size_t>(i)];
        if (count > 8) {
            EXPECT_NEAR(sumOfFirstHalf / (count / 2), 0.5, 0.1) << "in any order";
        }
        std::sort(times.begin(), times.end());
        for (int i = 0; i < count; ++i)
            EXPECT_NEAR(times[static_cast<std::size_t>(i)], (i + 0.5) / count, 1e-12);
    }
    Room room;
    room.addLights(0, 0);
    RenderOptions options = squareOptions(32);
    options.samples = 9;
    options.background.reset();
    Renderer renderer(room.scene, SceneUse::Film);
    const auto render = [&] {
        return renderer.render(roomCamera(), room.lightSet,
                               SurfaceShaders(room.scene.surfaces.size()), {}, options, {},
                               nullptr);
    };
    const Picture still = render();
    Exposure exposure;
    for (std::size_t i = 0; i < 9; ++i) {
        options.part = SampleRange{i, i + 1};
        exposure.add(render());
    }
    const Picture blurred = exposure.resolve({});
    double most = 0;
    for (std::size_t i = 0; i < still.rgba.size(); ++i)
        most = std::max(most, std::abs(static_cast<double>(still.rgba[i] - blurred.rgba[i])));
    EXPECT_LT(most, 1e-6) << "all samples at one time";
    const Picture over = exposure.resolve(V3d(1));
    for (std::size_t i = 3; i < over.rgba.size(); i += 4)
        ASSERT_EQ(over.rgba[i], 1);
}

}  // namespace
}  // namespace tavora::studio
