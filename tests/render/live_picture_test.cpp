// The live picture is, once clean, the very picture that a render gives, whatever
// was changed on the way to it.

#include "studio/render/live_picture.h"

#include <chrono>
#include <condition_variable>
#include <functional>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <memory>
#include <mutex>
#include <optional>
#include <png.h>
#include <string>
#include <thread>
#include <vector>

#include "host/handler.h"
#include "studio/render/png_encode.h"
#include "tests/render/probe.h"
#include "tests/render/room.h"

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
              news_ = true;
              heard_.notify_all();
          })) {}

    LivePicture& picture() { return *picture_; }

    /// The clean picture of that revision; null when it fails.
    std::shared_ptr<const LiveFrame> clean(std::uint64_t revision) {
        std::shared_ptr<const LiveFrame> frame;
        wait([&] {
            frame = picture_->latest();
            return (frame != nullptr && frame->revision == revision && frame->refined == 1) ||
                   !picture_->failure().empty();
        });
        return picture_->failure().empty() ? frame : nullptr;
    }

    /// Waits for a failure.
    std::string failure() {
        wait([&] { return !picture_->failure().empty(); });
        return picture_->failure();
    }

  private:
    template <class Check>
    void wait(const Check& check) {
        const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(60);
        while (!check()) {
            std::unique_lock lock(mutex_);
            ASSERT_TRUE(heard_.wait_until(lock, end, [this] { return news_; }));
            news_ = false;
        }
    }

    std::mutex mutex_;
    std::condition_variable heard_;
    bool news_ = false;
    std::unique_ptr<LivePicture> picture_;  ///< last: it calls back
};

/// What a picture file of 8 bits holds, as LiveFrame::rgba does.
Bytes levelsOf(const Picture& picture) {
    const std::string file = encodePng(picture, false, true);
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    png_image_begin_read_from_memory(&image, file.data(), file.size());
    image.format = PNG_FORMAT_RGBA;
    Bytes rgba(PNG_IMAGE_SIZE(image));
    EXPECT_NE(png_image_finish_read(&image, nullptr, rgba.data(), 0, nullptr), 0) << image.message;
    return rgba;
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
std::shared_ptr<const LightRig> lights(double sun, double right, int points, double size = 0) {
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
    std::shared_ptr<const LightRig> rig = lights(0.7, -0.3, 1);
    SurfaceShaders shading = SurfaceShaders(kSign + 1);
    LiveOptions options;

    Wish() {
        options.threads = 2;
        options.samples = 6;
        shading[kBall] = styled({{"edgeEnable", true}, {"highlightEnable", "On"}});
        shading[kWall] = styled(setting("lightPower", "Squared"));
    }

    Bytes rendered() const {
        RenderOptions wanted;
        wanted.width = width;
        wanted.height = height;
        wanted.samples = options.samples;
        wanted.threads = 1;
        wanted.background = options.background;
        Renderer renderer(room.scene);
        return levelsOf(renderer.render(camera, *rig, shading, TAVORA_MODULE, wanted, {}, nullptr));
    }

    std::uint64_t show(LivePicture& picture) const {
        picture.setView(camera, width, height);
        picture.setLights(rig);
        return picture.setShading(shading);
    }
};

/// How many bytes differ; pictures are too long to print.
std::size_t differences(const std::shared_ptr<const LiveFrame>& frame, const Bytes& expected) {
    if (frame == nullptr || frame->rgba.size() != expected.size() || frame->coarseness != 1 ||
        frame->width * frame->height * 4 != static_cast<int>(expected.size())) {
        return ~std::size_t{0};
    }
    std::size_t count = 0;
    for (std::size_t i = 0; i < expected.size(); ++i)
        if (frame->rgba[i] != expected[i]) ++count;
    return count;
}

/// A step of the user: changes the wish and tells the picture.
struct Edit {
    const char* name;
    std::function<std::uint64_t(Wish&, LivePicture&)> make;
};

Edit put(const char* name, Place surface, const std::optional<SurfaceShader>& shading) {
    return {name, [surface, shading](Wish& wish, LivePicture& picture) {
                wish.shading[surface] = shading;
                return picture.setSurface(surface, shading);
            }};
}

Edit wear(const char* name, Place surface, const Json& changes) {
    return put(name, surface, styled(changes));
}

Edit light(const char* name, double sun, double right, int points, double size = 0) {
    return {name, [sun, right, points, size](Wish& wish, LivePicture& picture) {
                wish.rig = lights(sun, right, points, size);
                return picture.setLights(wish.rig);
            }};
}

Edit view(const char* name, const V3d& eye, int width) {
    return {name, [eye, width](Wish& wish, LivePicture& picture) {
                wish.camera = frontCamera(eye, 2);
                wish.width = width;
                return picture.setView(wish.camera, wish.width, wish.height);
            }};
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
    return {wear("half clear wall", kWall, allZones("trans", 0.5)),
            wear("half clear ball", kBall, allZones("trans", 0.5)),
            wear("wholly clear ball", kBall, allZones("trans", 1)),
            wear("solid wall", kWall, allZones("color", {0, 0, 0})),
            wear("ink-over", kBall, ink),
            wear("what ink-over finds", kWall, setting("slopeEnable", true)),
            light("weaker sun", 0.3, -0.3, 1),
            wear("no ink-over", kBall, setting("slopeEnable", true)),
            wear("shaded pane", kPane, allZones("trans", 0.2)),
            wear("shaded leaf", kLeaf, setting("edgeEnable", true)),
            light("soft lights", 0.3, -0.3, 1, 0.4),
            wear("a look in soft light", kBall, setting("edgeEnable", true)),
            light("sun from the right", 0.5, 0.6, 1),
            light("many lights", 0.3, -0.3, 20),
            put("plain ball", kBall, {}),
            put("plain wall", kWall, {}),
            view("from the side", {0.4, 0.2, 8}, 50),
            wear("shaded ball", kBall, setting("useAllLights", false)),
            view("another size", {0.4, 0.2, 8}, 40),
            put("plain pane", kPane, {})};
}

/// Makes all edits; a picture of each. `expected`, if any, is what they are to be.
std::vector<Bytes> makeEdits(const LiveOptions& options, const std::vector<Bytes>* expected) {
    Wish wish;
    wish.options = options;
    LiveView live(wish.room.scene, TAVORA_MODULE, options);
    std::vector<Bytes> pictures;
    EXPECT_EQ(differences(live.clean(wish.show(live.picture())), wish.rendered()), 0U);
    for (const Edit& edit : edits()) {
        const auto frame = live.clean(edit.make(wish, live.picture()));
        pictures.push_back(expected != nullptr ? (*expected)[pictures.size()] : wish.rendered());
        EXPECT_EQ(differences(frame, pictures.back()), 0U) << edit.name;
    }
    return pictures;
}

TEST(LivePicture, ShowsEveryEditAsARenderAnewWould) {
    LiveOptions options = Wish().options;
    const std::vector<Bytes> pictures = makeEdits(options, nullptr);
    for (std::size_t i = 1; i < pictures.size(); ++i)
        EXPECT_NE(pictures[i], pictures[i - 1]) << edits()[i].name << " shows nothing new";
    for (const std::size_t memory : {std::size_t{0}, std::size_t{100'000}}) {
        options.memory = memory;
        makeEdits(options, &pictures);
    }
}

TEST(LivePicture, SaysWhatItHasNoMemoryFor) {
    Wish wish;
    wish.options.memory = 100'000;
    LiveView live(wish.room.scene, TAVORA_MODULE, wish.options);
    ASSERT_NE(live.clean(wish.show(live.picture())), nullptr);
    const LiveStats stats = live.picture().stats();
    EXPECT_GT(stats.keptBytes, 50'000U);
    EXPECT_LE(stats.keptBytes, 100'000U);
    EXPECT_GT(stats.keptShare, 0.1);
    EXPECT_LT(stats.keptShare, 0.8);
    EXPECT_NE(stats.notice, "");
    Wish roomy;
    LiveView other(roomy.room.scene, TAVORA_MODULE, roomy.options);
    ASSERT_NE(other.clean(roomy.show(other.picture())), nullptr);
    EXPECT_EQ(other.picture().stats().keptShare, 1);
    EXPECT_EQ(other.picture().stats().notice, "");
}

TEST(LivePicture, TracesAndShadesAgainOnlyWhatAnEditChanges) {
    Wish wish;
    wish.room.scene.surfaces[kPane].alphaMode = AlphaMode::Opaque;
    wish.rig = lights(0.7, -0.3, 20);
    LiveView live(wish.room.scene, TAVORA_MODULE, wish.options);
    ASSERT_NE(live.clean(wish.show(live.picture())), nullptr);
    const auto changesBy = [&](Place surface, const Json& changes) {
        const LiveStats before = live.picture().stats();
        wish.shading[surface] = styled(changes);
        const auto frame = live.clean(live.picture().setSurface(surface, wish.shading[surface]));
        LiveStats after = live.picture().stats();
        after.tracedRays -= before.tracedRays;
        after.evaluations -= before.evaluations;
        return after;
    };
    const LiveStats ball = changesBy(kBall, setting("slopeEnable", true));
    EXPECT_EQ(ball.tracedRays, 0U);
    EXPECT_GT(ball.evaluations, 500U);
    EXPECT_LT(ball.evaluations, 50U * 40 * 6 / 3);
    const LiveStats same = changesBy(kBall, setting("slopeEnable", true));
    EXPECT_EQ(same.tracedRays + same.evaluations, 0U);
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
    EXPECT_EQ(differences(live.clean(revision), wish.rendered()), 0U);
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
    EXPECT_EQ(differences(live.clean(live.picture().setShading(wish.shading)), good->rgba), 0U);
    EXPECT_EQ(live.picture().failure(), "");

    LiveView missing(wish.room.scene, "/no/module.so", wish.options);
    wish.show(missing.picture());
    EXPECT_THAT(missing.failure(), testing::HasSubstr("/no/module.so"));
    wish.shading.assign(kSign + 1, {});
    EXPECT_EQ(
        differences(missing.clean(missing.picture().setShading(wish.shading)), wish.rendered()),
        0U);
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
    EXPECT_EQ(at(-1.2, 0.2)->surface, std::size_t{kBall});
    EXPECT_EQ(at(0.2, 0.9)->surface, std::size_t{kPane});
    EXPECT_EQ(at(1.3, -0.9)->surface, std::size_t{kLeaf});
    EXPECT_EQ(at(0.5, -0.9)->surface, std::size_t{kWall});  // through a hole of the leaf
    EXPECT_NEAR(at(0.5, -0.9)->position.z, -2, 1e-9);
    EXPECT_FALSE(at(-2.2, 1.9));
    EXPECT_FALSE(live.picture().pickAt(-1, 5));
    EXPECT_FALSE(live.picture().pickAt(5, wish.height));
}

}  // namespace
}  // namespace tavora::studio
