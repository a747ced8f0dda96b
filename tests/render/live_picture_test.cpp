// The live picture is, once clean, the very picture that a render gives, whatever
// was changed on the way to it.

#include <chrono>
#include <functional>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "host/handler.h"
#include "studio/link/module_copy.h"
#include "studio/link/shader.h"
#include "studio/scene/mesh/tangents.h"
#include "studio/scene/settings/settings.h"
#include "studio/services/registry.h"
#include "tests/render/live_view.h"
#include "tests/render/probe.h"
#include "tests/render/test_scene.h"

namespace tavora::studio {
namespace {

using Imath::V3d;
using Json = nlohmann::ordered_json;

Json setting(const char* name, const Json& value) {
    Json changes = Json::object();
    changes[name] = value;
    return changes;
}

/// The module's defaults with some settings changed.
SurfaceShader look(const Json& changes = Json::object()) {
    static const Settings defaults =
        settingsOf(newShaderSettings(ModuleCopy(TAVORA_MODULE, findService)));
    Settings settings = defaults;
    applySettings(settings, changes, "test");
    return {.block = blockOf(settings)};
}

enum Place { kBall, kPane, kLeaf, kWall };

/// The quad of the wall, ready for its normal map.
std::shared_ptr<const Mesh> bumpyWall() {
    const auto mesh = quadMesh(1.7);
    mesh->tangents = makeTangents(*mesh, {});
    return mesh;
}

/// A ball, a clear pane and a cut-out leaf before a painted wall on which they throw
/// shadows; beyond the wall, nothing.
struct Room : TestScene {
    Room() {
        addSurface();
        Surface& pane = addSurface();
        pane.alphaMode = AlphaMode::Blend;
        pane.baseColor = {0.2F, 0.6F, 1, 0.4F};
        pane.doubleSided = true;
        pane.receivesShadows = false;
        Surface& leaf = addSurface();
        leaf.alphaMode = AlphaMode::Mask;
        leaf.doubleSided = true;
        leaf.baseColorTexture = TextureUse{};
        leaf.baseColorTexture->image =
            addImage(2, 2, {0, 200, 0, 255, 0, 0, 0, 0, 0, 0, 0, 0, 90, 200, 0, 255});
        Surface& wall = addSurface();
        wall.baseColorTexture = TextureUse{};
        wall.baseColorTexture->image = addImage(
            2, 2, {250, 240, 200, 255, 90, 80, 200, 255, 200, 90, 80, 255, 20, 60, 40, 255});
        wall.normalTexture.emplace().isData = true;
        wall.normalTexture->image = addImage(
            2, 2, {128, 128, 255, 255, 190, 128, 230, 255, 90, 200, 220, 255, 128, 60, 220, 255});
        addObject(sphereMesh(0.9, 24, 12), kBall, Imath::M44d().translate(V3d(-0.8, 0, 0)));
        addQuad({0.2, 0.3, 1.5}, 0.8, kPane);
        addQuad({0.9, -0.6, 0.5}, 0.7, kLeaf);
        addObject(bumpyWall(), kWall, Imath::M44d().translate(V3d(0.3, 0, -2)));
    }
};

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
    Camera camera = frontCamera({0.1, 0, 8}, 2);
    int width = 50;
    int height = 40;
    std::shared_ptr<const LightRig> rig = lights(0.7, -0.3, 1);
    SurfaceShaders shading = SurfaceShaders(4);
    LiveOptions options;

    Wish() {
        options.threads = 2;
        options.samples = 6;
        shading[kBall] = look({{"edgeEnable", true}, {"highlightEnable", "On"}});
        shading[kWall] = look(setting("lightPower", "Squared"));
    }

    std::vector<std::uint8_t> rendered() const {
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
std::size_t differences(const std::shared_ptr<const LiveFrame>& frame,
                        const std::vector<std::uint8_t>& expected) {
    if (frame == nullptr || frame->rgba.size() != expected.size()) return ~std::size_t{0};
    std::size_t count = 0;
    for (std::size_t i = 0; i < expected.size(); ++i)
        if (frame->rgba[i] != expected[i]) ++count;
    return count;
}

TEST(LivePicture, EndsInThePictureThatARenderGives) {
    Wish wish;
    for (const std::optional<V3d>& background :
         {std::optional<V3d>(), std::optional<V3d>(V3d(0.2, 0.4, 0.6))}) {
        wish.options.background = background;
        LiveView live(wish.room.scene, TAVORA_MODULE, wish.options);
        const auto frame = live.clean(wish.show(live.picture()));
        ASSERT_NE(frame, nullptr) << live.picture().failure();
        EXPECT_EQ(frame->width, wish.width);
        EXPECT_EQ(frame->height, wish.height);
        EXPECT_EQ(frame->coarseness, 1);
        EXPECT_EQ(differences(frame, wish.rendered()), 0U);
    }
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
    return put(name, surface, look(changes));
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

using Bytes = std::vector<std::uint8_t>;

/// Makes all edits; a picture of each. `expected`, if any, is what they are to be.
std::vector<Bytes> makeEdits(const LiveOptions& options, const std::vector<Bytes>* expected) {
    Wish wish;
    wish.options = options;
    LiveView live(wish.room.scene, TAVORA_MODULE, options);
    std::vector<Bytes> pictures;
    EXPECT_NE(live.clean(wish.show(live.picture())), nullptr);
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
        wish.shading[surface] = look(changes);
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
    wish.shading.assign(4, probe(kPaint));
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
    wish.shading.assign(4, {});
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
    EXPECT_EQ(at(-1.2, -0.2)->surface, std::size_t{kBall});
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
