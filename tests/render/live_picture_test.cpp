// The live picture is, once clean, the very picture that a render gives, whatever
// was changed on the way to it.

#include <gtest/gtest.h>
#include <memory>
#include <vector>

#include "host/handler.h"
#include "studio/link/module_copy.h"
#include "studio/link/shader.h"
#include "studio/scene/settings.h"
#include "studio/services/registry.h"
#include "tests/render/live_view.h"
#include "tests/render/probe.h"
#include "tests/render/test_scene.h"

namespace tavora::studio {
namespace {

using Imath::V3d;

StateBlock look(const nlohmann::ordered_json& changes) {
    static const Settings defaults =
        settingsOf(newShaderSettings(ModuleCopy(TAVORA_MODULE, findService)));
    Settings settings = defaults;
    applySettings(settings, changes, "test");
    return blockOf(settings);
}

enum Place { kBall, kPane, kLeaf, kWall };

/// A ball, a clear pane and a cut-out leaf before a wall on which they throw
/// shadows; beyond the wall, nothing.
struct Room : TestScene {
    Room() {
        addSurface();
        Surface& pane = addSurface();
        pane.alphaMode = AlphaMode::Blend;
        pane.baseColor = {0.2F, 0.6F, 1, 0.4F};
        pane.doubleSided = true;
        Surface& leaf = addSurface();
        leaf.alphaMode = AlphaMode::Mask;
        leaf.doubleSided = true;
        leaf.baseColorTexture = TextureUse{};
        leaf.baseColorTexture->image =
            addImage(2, 2, {0, 200, 0, 255, 0, 0, 0, 0, 0, 0, 0, 0, 90, 200, 0, 255});
        addSurface();
        addObject(sphereMesh(0.9, 24, 12), kBall, Imath::M44d().translate(V3d(-0.8, 0, 0)));
        addQuad({0.2, 0.3, 1.5}, 0.8, kPane);
        addQuad({0.9, -0.6, 0.5}, 0.7, kLeaf);
        addQuad({0.3, 0, -2}, 1.7, kWall);
        addLights(0.7);
    }

    /// A light for each of the kinds, the sun that strong.
    void addLights(double sun) {
        addSun({0.3, -0.4, -1}, V3d(sun, 0.6, 0.5));
        addLight(LightKind::Point, V3d(0.2, 0.3, 0.5)).position = {2, 3, 4};
        addLight(LightKind::Spot, V3d(0.4)).position = {0, 0, 6};
        rig.ambient = V3d(0.1);
    }

    std::shared_ptr<const LightRig> lights() const {
        return {&rig, [](const LightRig*) {}};
    }
};

/// The room, how it is looked at, and what a render makes of it.
struct RoomView {
    Room room;
    Camera camera = frontCamera({0.1, 0, 8}, 2);
    int width = 75;
    int height = 61;
    std::vector<SurfaceShading> shading{4};
    LiveOptions options;

    RoomView() {
        options.threads = 2;
        options.samples = 6;
    }

    std::vector<std::uint8_t> rendered(const LightRig& lights) const {
        RenderOptions wanted;
        wanted.width = width;
        wanted.height = height;
        wanted.samples = options.samples;
        wanted.threads = 1;
        wanted.background = options.background;
        Renderer renderer(room.scene);
        return levelsOf(
            renderer.render(camera, lights, shading, TAVORA_MODULE, wanted, {}, nullptr));
    }

    std::uint64_t show(LivePicture& picture) const {
        picture.setView(camera, width, height);
        picture.setLights(room.lights());
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
    RoomView view;
    view.shading[kBall].shader = look({{"edgeEnable", true}, {"highlightEnable", "On"}});
    view.shading[kWall].shader = look({{"lightPower", "Squared"}});
    for (const std::optional<V3d>& background :
         {std::optional<V3d>(), std::optional<V3d>(V3d(0.2, 0.4, 0.6))}) {
        view.options.background = background;
        LiveView live(view.room.scene, TAVORA_MODULE, view.options);
        const auto frame = live.clean(view.show(live.picture()));
        ASSERT_NE(frame, nullptr) << live.picture().failure();
        EXPECT_EQ(frame->width, view.width);
        EXPECT_EQ(frame->height, view.height);
        EXPECT_EQ(frame->coarseness, 1);
        EXPECT_EQ(differences(frame, view.rendered(view.room.rig)), 0U);
    }
}

}  // namespace
}  // namespace tavora::studio
