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
    made->rig.lights[1].castsShadow = false;
    made->rig.ambient = V3d(0.1);
    return {made, &made->rig};
}

/// What is to be seen, shown by a live picture and by a render.
struct Wish {
    Room room;
    Camera camera = roomCamera();
    int width = 50;
    int height = 40;
    std::shared_ptr<const LightSet> rig = lights(0.7, -0.3, 1);
    SurfaceShaders shading = SurfaceShaders(kSign + 1);
    LiveOptions options;

    Wish() {
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
        return pixel8Of(renderer.render(camera, *rig, shading, TAVORA_MODULE, wanted, {}, nullptr));
    }

    std::uint64_t show(LivePicture& picture) const {
        picture.setView(camera, width, height);
        picture.setLights(rig);
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
    std::shared_ptr<const LightSet> rig = {};
    int width = 0;  ///< of another view

    /// Changes the wish and tells the picture.
    std::uint64_t make(Wish& wish, LivePicture& picture) const {
        if (rig != nullptr) return picture.setLights(wish.rig = rig);
        if (width == 0) return picture.setSurface(surface, wish.shading[surface] = shader);
        wish.camera = frontCamera({0.375, 0.225, 8}, 2);
        return picture.setView(wish.camera, wish.width = width, wish.height);
    }
};

Edit wear(Place surface, const Json& changes) {
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
    return {wear(kWall, allZones("trans", 0.5)),
            wear(kBall, allZones("trans", 0.5)),
            wear(kBall, allZones("trans", 1)),
            wear(kWall, allZones("color", {0, 0, 0})),
            wear(kBall, ink),
            wear(kWall, setting("slopeEnable", true)),  // which the ink-over finds
            {.rig = lights(0.3, -0.3, 1)},
            wear(kBall, setting("slopeEnable", true)),
            wear(kPane, allZones("trans", 0.2)),
            wear(kLeaf, setting("edgeEnable", true)),
            {.rig = lights(0.3, -0.3, 1, 0.4)},
            wear(kBall, setting("edgeEnable", true)),
            {.rig = lights(0.5, 0.6, 1)},
            {.rig = lights(0.5, -0.6, 1)},
            wear(kSign, setting("slopeEnable", true)),
            wear(kPane, allZones("trans", 0.6)),
            {.rig = lights(0.3, -0.3, 20)},
            {kBall},
            {kWall},
            {.width = 50},
            wear(kBall, setting("useAllLights", false)),
            {.width = 40},
            {kPane}};
}

TEST(LivePicture, ShowsEveryEditAsARenderAnewWould) {
    const std::vector<Edit> all = edits();
    std::vector<Bytes> expected;
    for (const std::size_t memory :
         {std::size_t{512} << 20, std::size_t{0}, std::size_t{100'000}}) {
        Wish wish;
        wish.options.memory = memory;
        LiveView live(wish.room.scene, TAVORA_MODULE, wish.options);
        EXPECT_TRUE(shows(live.clean(wish.show(live.picture())), wish.rendered()));
        for (std::size_t i = 0; i < all.size(); ++i) {
            const auto frame = live.clean(all[i].make(wish, live.picture()));
            if (i == expected.size()) expected.push_back(wish.rendered());
            EXPECT_TRUE(shows(frame, expected[i])) << i;
            EXPECT_TRUE(i == 0 || expected[i] != expected[i - 1]) << i << " shows nothing new";
        }
    }
}

/// Squares where the faces of Embree's boxes lie, and shadow rays in planes of these.
TEST(LivePicture, MeetsRayByRayWhatARenderMeetsByRowsOfRays) {
    Wish wish;
    for (int i = 0; i < 9 * 9 * 9; i += 4)
        wish.room.addQuad(V3d(i % 9 - 4, i / 9 % 9 - 4, i / 81 - 4), 0.5, i % 3 + kLeaf);
    TestScene noon;
    noon.addSun({0, 0, -1});
    wish.rig = {&noon.rig, [](const LightSet*) {}};
    wish.shading.assign(kSign + 1, {});
    wish.options.samples = 1;
    wish.height = wish.width = 160;
    LiveView live(wish.room.scene, {}, wish.options);
    for (const double height : {8.0, 3.6, 1.6, 0.6, -0.4}) {
        wish.camera = frontCamera({1 / 64.0, 1 / 64.0, height}, 2.5);
        EXPECT_TRUE(shows(live.clean(wish.show(live.picture())), wish.rendered())) << height;
    }
}

TEST(LivePicture, SaysWhatItHasNoMemoryFor) {
    Wish wish;
    for (const bool isRoomy : {false, true}) {
        if (!isRoomy) wish.options.memory = 100'000;
        LiveView live(wish.room.scene, TAVORA_MODULE, wish.options);
        ASSERT_NE(live.clean(wish.show(live.picture())), nullptr);
        const LiveStats stats = live.picture().stats();
        EXPECT_GT(stats.keptBytes, 50'000U);
        EXPECT_LE(stats.keptBytes, wish.options.memory);
        EXPECT_GT(stats.keptShare, isRoomy ? 0.99 : 0.1);
        EXPECT_EQ(stats.keptShare < 0.8, !isRoomy);
        EXPECT_EQ(stats.notice.empty(), isRoomy);
        wish.options = Wish().options;
    }
}

TEST(LivePicture, TracesAndShadesAgainOnlyWhatAnEditChanges) {
    Wish wish;
    wish.room.scene.surfaces[kPane].alphaMode = AlphaMode::Opaque;
    wish.rig = lights(0.7, -0.3, 2, 0.4);
    LiveView live(wish.room.scene, TAVORA_MODULE, wish.options);
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
    const auto first = costsOf(wish.show(live.picture()));
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
    Wish wish;
    wish.width = 1201;  // far more than there is time for, by the guess it starts with
    wish.height = 903;
    wish.shading.assign(kSign + 1, {});
    LiveView live(wish.room.scene, {}, wish.options);
    wish.show(live.picture());
    const auto frame = live.after(nullptr);
    const int block = frame->blockSize;
    ASSERT_GT(block, 1);
    const auto pixel = [&](int x, int y) {
        return &frame->rgba[4 * static_cast<std::size_t>(y * wish.width + x)];
    };
    for (int i = 0; i < wish.width * wish.height; ++i) {
        const int x = i % wish.width;
        const int y = i / wish.width;
        const std::uint8_t* const corner = pixel(x - x % block, y - y % block);
        ASSERT_TRUE(std::equal(corner, corner + 4, pixel(x, y))) << x << ' ' << y;
    }
    const auto next = live.after(frame);
    EXPECT_LT(next->blockSize, block);
    EXPECT_GT(next->refined, frame->refined);
}

TEST(LivePicture, QuickEditsEndInTheLastOnesPicture) {
    Wish wish;
    wish.options.background = V3d(0.2, 0.4, 0.6);
    LiveView live(wish.room.scene, TAVORA_MODULE, wish.options);
    std::uint64_t revision = wish.show(live.picture());
    const std::vector<Edit> all = edits();
    for (std::size_t i = 0; i < 200; ++i) {
        const std::uint64_t next = all[i * 7 % all.size()].make(wish, live.picture());
        EXPECT_EQ(next, revision + 1);
        revision = next;
        std::this_thread::sleep_for(std::chrono::microseconds(i % 10 * 400));
    }
    EXPECT_TRUE(shows(live.clean(revision), wish.rendered()));
}

/// Changes the Room as an animation would: the ball moves, the leaf bends, and every third
/// time the sign is not there.
class Moving {
  public:
    explicit Moving(Wish& wish) : wish_(wish), all_(wish.room.scene.objects) {}

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

    Wish& wish_;
    const std::vector<std::shared_ptr<const Object>> all_;
    int times_ = 0;
};

TEST(LivePicture, ShowsASceneThatIsPosedAnewAsARenderWould) {
    Wish wish;
    Moving scene(wish);
    LiveView live(wish.room.scene, TAVORA_MODULE, wish.options);
    const Bytes atRest = wish.rendered();
    EXPECT_TRUE(shows(live.clean(wish.show(live.picture())), atRest));
    Bytes before = atRest;
    for (const double place : {0.2, 0.4, 0.7, 0.5, 0.0}) {
        const auto frame = live.clean(scene.moveTo(place, live.picture()));
        const Bytes expected = wish.rendered();
        EXPECT_TRUE(shows(frame, expected)) << place;
        EXPECT_NE(expected, before) << place << " shows nothing new";
        before = expected;
        const auto worn = live.clean(edits()[1].make(wish, live.picture()));
        EXPECT_TRUE(shows(worn, wish.rendered())) << place;
        wish.shading[kBall] = Wish().shading[kBall];
        live.picture().setSurface(kBall, wish.shading[kBall]);
    }
}

/// What was not posed must not be seen; who asks what a pixel shows waits for it.
TEST(LivePicture, IsPosedAtAnyMoment) {
    Wish wish;
    Moving scene(wish);
    LiveView live(wish.room.scene, TAVORA_MODULE, wish.options);
    EXPECT_THROW(live.picture().pose([]() -> FrameTime { throw std::bad_alloc(); }),
                 std::bad_alloc);
    wish.show(live.picture());
    EXPECT_FALSE(live.picture().pickAt(25, 20));
    scene.moveTo(0.1, live.picture());
    ASSERT_NE(live.after(nullptr), nullptr);
    const std::vector<Edit> all = edits();
    std::uint64_t revision = 0;
    for (std::size_t i = 0; i < 100; ++i) {
        all[i * 7 % all.size()].make(wish, live.picture());
        if (i % 4 != 3)
            std::this_thread::sleep_for(std::chrono::microseconds(i % 10 * i % 10 * 300));
        revision = scene.moveTo(static_cast<double>(i % 8) / 10, live.picture());
        EXPECT_TRUE(i % 5 != 0 || live.picture().pickAt(25, 20)) << i;
    }
    EXPECT_TRUE(shows(live.clean(revision), wish.rendered()));
}

TEST(LivePicture, SaysWhyNothingIsRenderedAndTriesAgain) {
    const auto probe = [](ProbeBehaviour behaviour) {
        return SurfaceShader{
            .block = {int{behaviour}, int{HOST_SHADER_COLOR}, 1.0F, 0.5F, 0.0F, 0.0F}};
    };
    Wish wish;
    wish.shading.assign(kSign + 1, probe(kPaint));
    LiveView live(wish.room.scene, PROBE_MODULE, wish.options);
    const auto good = live.clean(wish.show(live.picture()));
    ASSERT_NE(good, nullptr);
    live.picture().setSurface(kLeaf, probe(kRefuse));
    EXPECT_THAT(live.failure(), testing::HasSubstr("these settings are refused"));
    live.picture().setView(wish.camera, wish.width, wish.height);
    EXPECT_EQ(live.picture().latest()->revision, good->revision);
    EXPECT_TRUE(shows(live.clean(live.picture().setShading(wish.shading)), good->rgba));
    EXPECT_EQ(live.picture().failure(), "");

    LiveView missing(wish.room.scene, "/no/module.so", wish.options);
    wish.show(missing.picture());
    EXPECT_THAT(missing.failure(), testing::HasSubstr("/no/module.so"));
    wish.shading.assign(kSign + 1, {});
    EXPECT_TRUE(shows(missing.clean(missing.picture().setShading(wish.shading)), wish.rendered()));
}

TEST(LivePicture, EndsAtAnyMoment) {
    Wish wish;
    for (int i = 0; i < 40; ++i) {
        LivePicture picture(wish.room.scene, TAVORA_MODULE, wish.options, [] {});
        if (i > 0) wish.show(picture);
        std::this_thread::sleep_for(std::chrono::microseconds(i * i * 20));
    }
}

TEST(LivePicture, KnowsWhatAPixelShows) {
    Wish wish;
    LiveView live(wish.room.scene, TAVORA_MODULE, wish.options);
    EXPECT_FALSE(live.picture().pickAt(5, 5));
    ASSERT_NE(live.clean(wish.show(live.picture())), nullptr);
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
    EXPECT_FALSE(live.picture().pickAt(5, wish.height));
}

}  // namespace
}  // namespace tavora::studio
