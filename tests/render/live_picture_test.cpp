// The live picture is, once clean, the very picture that a render gives, whatever
// was changed on the way to it.

#include "studio/render/live/live_picture.h"

#include <chrono>
#include <condition_variable>
#include <functional>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <tuple>
#include <vector>

#include "host/handler.h"
#include "studio/render/image/display_encoding.h"
#include "tests/render/probe.h"
#include "tests/render/test_scene.h"

namespace tavora::studio {
namespace {

using Imath::V3d;
using Json = nlohmann::ordered_json;
using Bytes = std::vector<std::uint8_t>;

/// A live picture and its owner, who waits for it, but no longer than any should take.
class LiveView {
  public:
    LiveView(const Scene& scene, const std::filesystem::path& module, const LiveOptions& options)
        : picture_(std::make_unique<LivePicture>(scene, module, options, [this] {
              const std::lock_guard lock(mutex_);
              heard_.notify_all();
          })) {}

    LivePicture& picture() { return *picture_; }

    /// The clean picture of that revision; null when it fails.
    std::shared_ptr<const LiveFrame> clean(std::uint64_t revision) {
        std::shared_ptr<const LiveFrame> frame;
        wait([&] {
            frame = picture_->failure().empty() ? picture_->latest() : nullptr;
            return !picture_->failure().empty() ||
                   (frame != nullptr && frame->revision == revision && frame->refined == 1);
        });
        return frame;
    }

    /// Waits for a failure.
    std::string failure() {
        wait([&] { return !picture_->failure().empty(); });
        return picture_->failure();
    }

    /// A newer picture.
    std::shared_ptr<const LiveFrame> after(const std::shared_ptr<const LiveFrame>& frame) {
        wait([&] { return picture_->latest() != frame; });
        return picture_->latest();
    }

  private:
    template <class Check>
    void wait(const Check& check) {
        std::unique_lock lock(mutex_);
        ASSERT_TRUE(heard_.wait_for(lock, std::chrono::seconds(60), check));
    }

    std::mutex mutex_;
    std::condition_variable heard_;
    std::unique_ptr<LivePicture> picture_;  ///< last: it calls back
};

/// What a picture file of 8 bits holds, as LiveFrame::rgba does.
Bytes pixel8Of(const Picture& picture) {
    Bytes bytes(picture.rgba.size());
    for (std::size_t i = 0; i < bytes.size(); i += 4) {
        unsigned levels[4];
        encodeForDisplay(&picture.rgba[i], true, 255, levels);
        std::copy_n(levels, 4, &bytes[i]);
    }
    return bytes;
}

Json setting(const char* name, const Json& value) {
    Json changes = Json::object();
    changes[name] = value;
    return changes;
}

SurfaceShader styled(const Json& changes) {
    return {.block = look(changes)};
}

/// A sun that strong and that far from the right, a spot, and so many points,
/// all of that size.
std::shared_ptr<const LightSet> lights(double sun, double right, int points, double size = 0) {
    const auto made = std::make_shared<TestScene>();
    made->addSun({-right, -0.4, -1}, V3d(sun, 0.6, 0.5));
    made->addLight(LightKind::Spot, V3d(0.4)).position = {0, 0, 6};
    for (int i = 0; i < points; ++i)
        made->addLight(LightKind::Point, V3d(0.2, 0.3, 0.5) / points).position = {2, 3.0 - i, 4};
    made->soften(size, size);
    made->lightSet.lights[1].castsShadow = false;
    made->lightSet.ambient = V3d(0.1);
    return {made, &made->lightSet};
}

/// What is to be seen, shown by a live picture and by a render.
struct Preview {
    Room room;
    Camera camera = roomCamera();
    int width = 50;
    int height = 40;
    std::shared_ptr<const LightSet> lightSet = lights(0.7, -0.3, 1);
    SurfaceShaders shading = SurfaceShaders(kSign + 1);
    LiveOptions options;

    Preview() {
        options.threads = 2;
        options.samples = 6;
        shading[kBall] = styled({{"edgeEnable", true}, {"highlightEnable", "On"}});
        shading[kWall] = styled(setting("lightPower", "Squared"));
    }

    Bytes rendered() const {
        RenderOptions wanted = squareOptions(height);
        wanted.width = width;
        wanted.samples = options.samples;
        wanted.background = options.background;
        Renderer renderer(room.scene);
        return pixel8Of(
            renderer.render(camera, *lightSet, shading, TAVORA_MODULE, wanted, {}, nullptr));
    }

    std::uint64_t show(LivePicture& picture) const {
        picture.setView(camera, width, height);
        picture.setLights(lightSet);
        return picture.setShading(shading);
    }
};

/// Whether it is that picture, clean; pictures are too long to print.
bool shows(const std::shared_ptr<const LiveFrame>& frame, const Bytes& expected) {
    return frame != nullptr && frame->blockSize == 1 && frame->rgba == expected &&
           frame->width * frame->height * 4 == static_cast<int>(expected.size());
}

/// A step of the user: of these one.
struct Edit {
    Place surface = kBall;
    std::optional<SurfaceShader> shader = {};
    std::shared_ptr<const LightSet> lightSet = {};
    int width = 0;  ///< of another view

    /// Changes the preview and tells the picture.
    std::uint64_t make(Preview& preview, LivePicture& picture) const {
        if (lightSet != nullptr) return picture.setLights(preview.lightSet = lightSet);
        if (width == 0) return picture.setSurface(surface, preview.shading[surface] = shader);
        preview.camera = frontCamera({0.375, 0.225, 8}, 2);
        return picture.setView(preview.camera, preview.width = width, preview.height);
    }
};

Edit withShading(Place surface, const Json& changes) {
    return {surface, styled(changes)};
}

Json allZones(const std::string& field, const Json& value) {
    Json changes = Json::object();
    for (int i = 0; i < 5; ++i)
        changes["zones[" + std::to_string(i) + "]." + field] = value;
    return changes;
}

/// Each shows something else than the one before it.
std::vector<Edit> edits() {
    const Json ink{{"inkoverEnable", true},
                   {"inkoverObject", false},
                   {"inkoverColor", {0, 0, 0}},
                   {"inkoverPaintColor", {0, 1, 0}},
                   {"maxTraceDepth", 2}};
    return {withShading(kWall, allZones("trans", 0.5)),
            withShading(kBall, allZones("trans", 0.5)),
            withShading(kBall, allZones("trans", 1)),
            withShading(kWall, allZones("color", {0, 0, 0})),
            withShading(kBall, ink),
            withShading(kWall, setting("slopeEnable", true)),  // which the ink-over finds
            {.lightSet = lights(0.3, -0.3, 1)},
            withShading(kBall, setting("slopeEnable", true)),
            withShading(kPane, allZones("trans", 0.2)),
            withShading(kLeaf, setting("edgeEnable", true)),
            {.lightSet = lights(0.3, -0.3, 1, 0.4)},
            withShading(kBall, setting("edgeEnable", true)),
            {.lightSet = lights(0.5, 0.6, 1)},
            {.lightSet = lights(0.5, -0.6, 1)},
            withShading(kSign, setting("slopeEnable", true)),
            withShading(kPane, allZones("trans", 0.6)),
            {.lightSet = lights(0.3, -0.3, 20)},
            {kBall},
            {kWall},
            {.width = 50},
            withShading(kBall, setting("useAllLights", false)),
            {.width = 40},
            {kPane}};
}

TEST(LivePicture, ShowsEveryEditAsARenderAnewWould) {
    const std::vector<Edit> all = edits();
    std::vector<Bytes> expected;
    for (const std::size_t memory :
         {std::size_t{512} << 20, std::size_t{0}, std::size_t{100'000}}) {
        Preview preview;
        preview.options.memory = memory;
        LiveView live(preview.room.scene, TAVORA_MODULE, preview.options);
        EXPECT_TRUE(shows(live.clean(preview.show(live.picture())), preview.rendered()));
        for (std::size_t i = 0; i < all.size(); ++i) {
            const auto frame = live.clean(all[i].make(preview, live.picture()));
            if (i == expected.size()) expected.push_back(preview.rendered());
            EXPECT_TRUE(shows(frame, expected[i])) << i;
            EXPECT_TRUE(i == 0 || expected[i] != expected[i - 1]) << i << " shows nothing new";
        }
    }
}

TEST(LivePicture, SaysWhatItHasNoMemoryFor) {
    Preview preview;
    for (const bool isRoomy : {false, true}) {
        if (!isRoomy) preview.options.memory = 100'000;
        LiveView live(preview.room.scene, TAVORA_MODULE, preview.options);
        ASSERT_NE(live.clean(preview.show(live.picture())), nullptr);
        const LiveStats stats = live.picture().stats();
        EXPECT_GT(stats.cachedBytes, 50'000U);
        EXPECT_LE(stats.cachedBytes, preview.options.memory);
        EXPECT_GT(stats.cachedFraction, isRoomy ? 0.99 : 0.1);
        EXPECT_EQ(stats.cachedFraction < 0.8, !isRoomy);
        EXPECT_EQ(stats.notice.empty(), isRoomy);
        preview.options = Preview().options;
    }
}

TEST(LivePicture, TracesAndShadesAgainOnlyWhatAnEditChanges) {
    Preview preview;
    preview.room.scene.surfaces[kPane].alphaMode = AlphaMode::Opaque;
    preview.lightSet = lights(0.7, -0.3, 2, 0.4);
    LiveView live(preview.room.scene, TAVORA_MODULE, preview.options);
    LiveStats before;
    const auto costsOf = [&](std::uint64_t revision) {
        EXPECT_NE(live.clean(revision), nullptr);
        const LiveStats now = live.picture().stats();
        const std::pair costs(now.tracedRays - before.tracedRays,
                              now.evaluations - before.evaluations);
        before = now;
        return costs;
    };
    const std::uint64_t samples = 50U * 40 * 6;
    const auto first = costsOf(preview.show(live.picture()));
    const SurfaceShader changed = styled(setting("slopeEnable", true));
    const auto ball = costsOf(live.picture().setSurface(kBall, changed));
    EXPECT_EQ(ball.first, 0U);
    EXPECT_GT(ball.second, 500U);
    EXPECT_LT(ball.second, samples / 3);
    EXPECT_EQ(costsOf(live.picture().setSurface(kBall, changed)), std::pair(0UL, 0UL));
    // Other lights cost no viewing rays.
    const auto lit = costsOf(live.picture().setLights(lights(0.6, -0.3, 2, 0.4)));
    EXPECT_GT(lit.first, samples);
    EXPECT_LE(lit.first + samples, first.first);
    EXPECT_EQ(lit.second, first.second);
}

TEST(LivePicture, BeginsCoarseWhereItMustAndGetsFiner) {
    Preview preview;
    preview.width = 1201;  // far more than there is time for, by the guess it starts with
    preview.height = 903;
    preview.shading.assign(kSign + 1, {});
    LiveView live(preview.room.scene, {}, preview.options);
    preview.show(live.picture());
    const auto frame = live.after(nullptr);
    const int block = frame->blockSize;
    ASSERT_GT(block, 1);
    const auto pixel = [&](int x, int y) {
        return &frame->rgba[4 * static_cast<std::size_t>(y * preview.width + x)];
    };
    for (int i = 0; i < preview.width * preview.height; ++i) {
        const int x = i % preview.width;
        const int y = i / preview.width;
        const std::uint8_t* const corner = pixel(x - x % block, y - y % block);
        ASSERT_TRUE(std::equal(corner, corner + 4, pixel(x, y))) << x << ' ' << y;
    }
    const auto next = live.after(frame);
    EXPECT_LT(next->blockSize, block);
    EXPECT_GT(next->refined, frame->refined);
}

TEST(LivePicture, QuickEditsEndInTheLastOnesPicture) {
    Preview preview;
    preview.options.background = V3d(0.2, 0.4, 0.6);
    LiveView live(preview.room.scene, TAVORA_MODULE, preview.options);
    std::uint64_t revision = preview.show(live.picture());
    const std::vector<Edit> all = edits();
    for (std::size_t i = 0; i < 200; ++i) {
        const std::uint64_t next = all[i * 7 % all.size()].make(preview, live.picture());
        EXPECT_EQ(next, revision + 1);
        revision = next;
        std::this_thread::sleep_for(std::chrono::microseconds(i % 10 * 400));
    }
    EXPECT_TRUE(shows(live.clean(revision), preview.rendered()));
}

/// Changes the Room as an animation would: the ball moves, the leaf bends, and every third
/// time the sign is not there.
class Moving {
  public:
    explicit Moving(Preview& preview) : wish_(preview), all_(preview.room.scene.objects) {}

    std::uint64_t moveTo(double place, LivePicture& picture) {
        return picture.pose([&] {
            move(place);
            return FrameTime{0, place};
        });
    }

  private:
    void move(double place) {
        auto& ball = const_cast<Object&>(*all_[0]);
        ball.objectToWorld = Imath::M44d().translate(V3d(-0.8 + place, place / 2, 0));
        auto& leaf = const_cast<Mesh&>(*all_[2]->parts[0].mesh);
        leaf.positions[0].z = static_cast<float>(place);
        ++leaf.revision;
        auto& bent = const_cast<Mesh&>(*all_[0]->parts[0].mesh);
        for (Imath::V3f& normal : bent.normals)  // which threads read at every hit
            normal = (normal + Imath::V3f(0, 0, static_cast<float>(place) / 9)).normalized();
        ++bent.revision;
        wish_.room.scene.objects = all_;
        if (++times_ % 3 == 0) wish_.room.scene.objects.pop_back();
    }

    Preview& wish_;
    const std::vector<std::shared_ptr<const Object>> all_;
    int times_ = 0;
};

TEST(LivePicture, ShowsASceneThatIsPosedAnewAsARenderWould) {
    Preview preview;
    Moving scene(preview);
    LiveView live(preview.room.scene, TAVORA_MODULE, preview.options);
    const Bytes atRest = preview.rendered();
    EXPECT_TRUE(shows(live.clean(preview.show(live.picture())), atRest));
    Bytes before = atRest;
    for (const double place : {0.2, 0.4, 0.7, 0.5, 0.0}) {
        const auto frame = live.clean(scene.moveTo(place, live.picture()));
        const Bytes expected = preview.rendered();
        EXPECT_TRUE(shows(frame, expected)) << place;
        EXPECT_NE(expected, before) << place << " shows nothing new";
        before = expected;
        const auto worn = live.clean(edits()[1].make(preview, live.picture()));
        EXPECT_TRUE(shows(worn, preview.rendered())) << place;
        preview.shading[kBall] = Preview().shading[kBall];
        live.picture().setSurface(kBall, preview.shading[kBall]);
    }
}

/// What was not posed must not be seen; who asks what a pixel shows waits for it.
TEST(LivePicture, IsPosedAtAnyMoment) {
    Preview preview;
    Moving scene(preview);
    LiveView live(preview.room.scene, TAVORA_MODULE, preview.options);
    EXPECT_THROW(live.picture().pose([]() -> FrameTime { throw std::bad_alloc(); }),
                 std::bad_alloc);
    preview.show(live.picture());
    EXPECT_FALSE(live.picture().pickAt(25, 20));
    scene.moveTo(0.1, live.picture());
    ASSERT_NE(live.after(nullptr), nullptr);
    const std::vector<Edit> all = edits();
    std::uint64_t revision = 0;
    for (std::size_t i = 0; i < 100; ++i) {
        all[i * 7 % all.size()].make(preview, live.picture());
        if (i % 4 != 3)
            std::this_thread::sleep_for(std::chrono::microseconds(i % 10 * i % 10 * 300));
        revision = scene.moveTo(static_cast<double>(i % 8) / 10, live.picture());
        EXPECT_TRUE(i % 5 != 0 || live.picture().pickAt(25, 20)) << i;
    }
    EXPECT_TRUE(shows(live.clean(revision), preview.rendered()));
}

TEST(LivePicture, SaysWhyNothingIsRenderedAndTriesAgain) {
    const auto probe = [](ProbeBehaviour behaviour) {
        return SurfaceShader{
            .block = {int{behaviour}, int{HOST_SHADER_COLOR}, 1.0F, 0.5F, 0.0F, 0.0F}};
    };
    Preview preview;
    preview.shading.assign(kSign + 1, probe(kPaint));
    LiveView live(preview.room.scene, PROBE_MODULE, preview.options);
    const auto good = live.clean(preview.show(live.picture()));
    ASSERT_NE(good, nullptr);
    live.picture().setSurface(kLeaf, probe(kRefuse));
    EXPECT_THAT(live.failure(), testing::HasSubstr("these settings are refused"));
    live.picture().setView(preview.camera, preview.width, preview.height);
    EXPECT_EQ(live.picture().latest()->revision, good->revision);
    EXPECT_TRUE(shows(live.clean(live.picture().setShading(preview.shading)), good->rgba));
    EXPECT_EQ(live.picture().failure(), "");

    LiveView missing(preview.room.scene, "/no/module.so", preview.options);
    preview.show(missing.picture());
    EXPECT_THAT(missing.failure(), testing::HasSubstr("/no/module.so"));
    preview.shading.assign(kSign + 1, {});
    EXPECT_TRUE(
        shows(missing.clean(missing.picture().setShading(preview.shading)), preview.rendered()));
}

TEST(LivePicture, EndsAtAnyMoment) {
    Preview preview;
    for (int i = 0; i < 40; ++i) {
        LivePicture picture(preview.room.scene, TAVORA_MODULE, preview.options, [] {});
        if (i > 0) preview.show(picture);
        std::this_thread::sleep_for(std::chrono::microseconds(i * i * 20));
    }
}

TEST(LivePicture, KnowsWhatAPixelShows) {
    Preview preview;
    LiveView live(preview.room.scene, TAVORA_MODULE, preview.options);
    EXPECT_FALSE(live.picture().pickAt(5, 5));
    ASSERT_NE(live.clean(preview.show(live.picture())), nullptr);
    // Ten pixels a unit, the eye at 0.1, 0.
    const auto at = [&](double x, double y) {
        return live.picture().pickAt(static_cast<int>(25 + (x - 0.1) * 10),
                                     static_cast<int>(20 - y * 10));
    };
    const std::tuple<double, double, Place> seen[] = {
        {-1.2, 0.2, kBall}, {0.2, 0.9, kPane}, {1.3, -0.9, kLeaf}, {0.5, -0.9, kWall}};
    for (const auto& [x, y, surface] : seen)
        EXPECT_EQ(at(x, y)->surface, std::size_t{surface});
    EXPECT_NEAR(at(0.5, -0.9)->position.z, -2, 1e-9) << "through a hole of the leaf";
    EXPECT_FALSE(at(-2.2, 1.9));
    EXPECT_FALSE(live.picture().pickAt(-1, 5));
    EXPECT_FALSE(live.picture().pickAt(5, preview.height));
}

}  // namespace
}  // namespace tavora::studio
