// The pictures on the way to the clean one, and what is kept of them when
// something else is wished.

#include "studio/render/live_painter.h"

#include <gtest/gtest.h>
#include <limits>
#include <vector>

#include "tests/render/test_scene.h"

namespace tavora::studio {
namespace {

using Imath::V3d;

/// A ball before nothing, plain, under a sun.
struct Easel : TestScene {
    SceneIndex index;
    RayScene rays;
    LiveWish wish;

    explicit Easel(int width = 64, int height = 40) : index(ball().scene), rays(index) {
        wish.revision = wish.viewRevision = 1;
        wish.camera = frontCamera({0, 0, 8}, 1.2);
        wish.width = width;
        wish.height = height;
        wish.lights = {&rig, [](const LightRig*) {}};
        wish.shading.resize(1);
        wish.hasShading = true;
    }

    /// All pictures on the way to the clean one. With `drops`, something else is
    /// wished as soon as there is a picture.
    std::vector<LiveFrame> paint(LivePainter& painter, bool drops = false) {
        std::vector<LiveFrame> frames;
        std::atomic<bool> dropped{false};
        LiveWatch watch;
        watch.ending = [] { return false; };
        watch.overtaken = [&] { return dropped.load(); };
        watch.published = [&](LiveFrame frame) {
            frames.push_back(std::move(frame));
            dropped = drops;
        };
        painter.paint(wish, watch);
        return frames;
    }

  private:
    const TestScene& ball() {
        addSurface();
        addObject(sphereMesh(1, 32, 16), 0);
        addSun({0.5, -0.5, -1});
        return *this;
    }
};

LiveOptions options(int samples) {
    LiveOptions options;
    options.threads = 1;
    options.samples = samples;
    return options;
}

std::size_t place(const LiveFrame& frame, int x, int y) {
    return 4 * (static_cast<std::size_t>(y) * static_cast<std::size_t>(frame.width) +
                static_cast<std::size_t>(x));
}

TEST(LivePainter, BeginsCoarseWhereItMustAndGetsFiner) {
    Easel easel(301, 203);  // more than there is time for, by the guess it starts with
    LivePainter painter(easel.rays, {}, options(2));
    const std::vector<LiveFrame> frames = easel.paint(painter);
    ASSERT_GT(frames.size(), 2U);
    const int coarsest = frames.front().coarseness;
    ASSERT_GT(coarsest, 1);
    const LiveFrame& first = frames.front();
    for (int y = 0; y < first.height; ++y) {
        for (int x = 0; x < first.width; ++x) {
            const auto here = first.rgba.begin() + static_cast<std::ptrdiff_t>(place(first, x, y));
            const auto block = first.rgba.begin() + static_cast<std::ptrdiff_t>(place(
                                                        first, x - x % coarsest, y - y % coarsest));
            ASSERT_TRUE(std::equal(here, here + 4, block)) << x << ' ' << y;
        }
    }
    for (std::size_t i = 1; i < frames.size(); ++i) {
        EXPECT_GT(frames[i].refined, frames[i - 1].refined);
        EXPECT_LE(frames[i].coarseness, frames[i - 1].coarseness);
    }
    EXPECT_EQ(frames.back().refined, 1);
}

TEST(LivePainter, KeepsSamplesOfAPictureThatWasDropped) {
    Easel easel;
    LivePainter painter(easel.rays, {}, options(4));
    const std::vector<LiveFrame> dropped = easel.paint(painter, true);
    ASSERT_EQ(dropped.size(), 1U);
    EXPECT_EQ(dropped[0].refined, 0.25);
    const std::uint64_t rays = painter.stats().tracedRays;
    EXPECT_GE(rays, 64U * 40);
    // Another wish that shows the same: the samples there are, stay.
    ++easel.wish.revision;
    const std::vector<LiveFrame> frames = easel.paint(painter);
    EXPECT_EQ(frames.back().revision, easel.wish.revision);
    EXPECT_EQ(frames.back().refined, 1);
    EXPECT_NEAR(static_cast<double>(painter.stats().tracedRays), static_cast<double>(4 * rays),
                0.02 * static_cast<double>(4 * rays));
}

TEST(LivePainter, NewLightsCostNoViewingRays) {
    Easel easel;
    LivePainter painter(easel.rays, {}, options(4));
    easel.paint(painter);
    const std::uint64_t before = painter.stats().tracedRays;
    TestScene evening;
    evening.addSun({0.5, -0.5, -1}, V3d(0.5));
    easel.wish.lights = {&evening.rig, [](const LightRig*) {}};
    ++easel.wish.revision;
    easel.paint(painter);
    const std::uint64_t shadows = painter.stats().tracedRays - before;
    EXPECT_EQ(shadows, before - 4U * 64 * 40);
}

}  // namespace
}  // namespace tavora::studio
