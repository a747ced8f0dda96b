#include "tests/render/room.h"

#include <gtest/gtest.h>

#include "studio/link/module_copy.h"
#include "studio/link/shader.h"
#include "studio/scene/mesh/tangents.h"
#include "studio/scene/settings/settings.h"
#include "studio/services/registry.h"

namespace tavora::studio {
namespace {

TextureUse leafImage(TestScene& test) {
    TextureUse use;
    use.image = test.addImage(2, 2, {0, 200, 0, 255, 0, 0, 0, 0, 0, 0, 0, 0, 90, 200, 0, 255});
    return use;
}

TextureUse paint(TestScene& test) {
    TextureUse use;
    use.image = test.addImage(
        2, 2, {250, 240, 200, 255, 90, 80, 200, 255, 200, 90, 80, 255, 20, 60, 40, 255});
    return use;
}

TextureUse bumps(TestScene& test) {
    TextureUse use;
    use.isData = true;
    use.image = test.addImage(
        2, 2, {128, 128, 255, 255, 190, 128, 230, 255, 90, 200, 220, 255, 128, 60, 220, 255});
    return use;
}

}  // namespace

Room::Room() {
    for (int i = kBall; i <= kSign; ++i)
        addSurface();
    std::vector<Surface>& all = scene.surfaces;
    for (const Place place : {kPane, kClear}) {
        all[place].alphaMode = AlphaMode::Blend;
        all[place].baseColor = {0.2F, 0.6F, 1, place == kPane ? 0.4F : 0.0F};
    }
    all[kPane].doubleSided = all[kLeaf].doubleSided = true;
    all[kPane].receivesShadows = all[kSign].castsShadows = false;
    all[kLeaf].alphaMode = AlphaMode::Mask;
    all[kLeaf].baseColorTexture = leafImage(*this);
    all[kWall].baseColorTexture = paint(*this);
    all[kWall].normalTexture = bumps(*this);
    all[kSign].unlit = true;

    addObject(sphereMesh(0.9, 24, 12), kBall, Imath::M44d().translate(Imath::V3d(-0.8, 0, 0)));
    addQuad({0.2, 0.3, 1.5}, 0.8, kPane);
    addQuad({0.9, -0.6, 0.5}, 0.7, kLeaf);
    const auto wall = tangentQuadMesh(1.7);
    addObject(wall, kWall, Imath::M44d().translate(Imath::V3d(0.3, 0, -2)));
    addObject(wall, kWall, Imath::M44d().translate(Imath::V3d(0.5, 0.1, -2)));
    addQuad({0, 0, 2}, 1.2, kClear);
    addQuad({-1, -1, 1}, 0.4, kSign);
}

void Room::addLights(double radius, double angle) {
    addSun({0.3, -0.4, -1}, Imath::V3d(0.7, 0.6, 0.5));
    addLight(LightKind::Point, Imath::V3d(0.2, 0.3, 0.5)).position = {2, 3, 4};
    addLight(LightKind::Spot, Imath::V3d(0.5)).position = {0, 0, 6};
    soften(radius, angle);
    rig.ambient = Imath::V3d(0.1);
}

std::shared_ptr<const Mesh> tangentQuadMesh(double halfSide) {
    const auto mesh = quadMesh(halfSide);
    mesh->tangents = makeTangents(*mesh, {});
    return mesh;
}

Camera roomCamera() {
    return frontCamera({0.1, 0, 8}, 2);
}

StateBlock look(const nlohmann::ordered_json& changes) {
    static const Settings defaults =
        settingsOf(newShaderSettings(ModuleCopy(TAVORA_MODULE, findService)));
    Settings settings = defaults;
    applySettings(settings, changes, "test");
    return blockOf(settings);
}

QuadScene::QuadScene() {
    addSurface();
    addQuad({0, 0, 0}, 1, 0);
}

Picture onePixel(const TestScene& test, const std::optional<StateBlock>& probe, RenderStats* stats,
                 const Imath::V3d& eye) {
    const SurfaceShaders shading =
        probe ? shadingFor(test, *probe) : SurfaceShaders(test.scene.surfaces.size());
    return Renderer(test.scene)
        .render(frontCamera(eye, 0.5), test.rig, shading, PROBE_MODULE, squareOptions(1), {},
                stats);
}

Imath::V3d colorOf(const TestScene& test, const std::optional<StateBlock>& probe) {
    return displayed(onePixel(test, probe), 0, 0);
}

Imath::V3d colorFrom(const Imath::V3d& eye, const TestScene& test) {
    return displayed(onePixel(test, {}, nullptr, eye), 0, 0);
}

void expectColor(const Imath::V3d& actual, const Imath::V3d& expected) {
    EXPECT_LT((actual - expected).length(), 2e-6) << actual << " instead of " << expected;
}

}  // namespace tavora::studio
