#include <cmath>
#include <gtest/gtest.h>

#include "studio/link/module_copy.h"
#include "studio/link/shader.h"
#include "studio/scene/mesh/tangents.h"
#include "studio/scene/settings/settings.h"
#include "studio/services/registry.h"
#include "studio/util/color.h"
#include "tests/render/test_scene.h"

namespace tavora::studio {
namespace {

TextureUse image(TestScene& test, std::vector<std::uint8_t> rgba) {
    TextureUse use;
    use.image = test.addImage(2, 2, std::move(rgba));
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
    all[kLeaf].baseColorTexture =
        image(*this, {0, 200, 0, 255, 0, 0, 0, 0, 0, 0, 0, 0, 90, 200, 0, 255});
    all[kWall].baseColorTexture =
        image(*this, {250, 240, 200, 255, 90, 80, 200, 255, 200, 90, 80, 255, 20, 60, 40, 255});
    all[kWall].normalTexture = image(
        *this, {128, 128, 255, 255, 190, 128, 230, 255, 90, 200, 220, 255, 128, 60, 220, 255});
    all[kWall].normalTexture->isData = true;
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
    lightSet.ambient = Imath::V3d(0.1);
}

Shapes::Shapes(bool unlit) {
    for (int i = 0; i < 60; ++i) {
        Surface& surface = addSurface();
        surface.unlit = unlit;
        const auto part = [i](int step) { return static_cast<float>(i * step % 7 + 1) / 7; };
        surface.baseColor = {part(1), part(2), part(3), 1};
        const Imath::V3d size(0.1 + 0.03 * (i % 13), i % 5 == 0 ? 0.01 : 0.1 + 0.02 * (i % 11), 1);
        const Imath::V3d place(std::cos(2.4 * i), std::sin(2.4 * i), 0);
        addObject(
            quadMesh(1), i,
            Imath::M44d().scale(size) * Imath::M44d().rotate(Imath::V3d(0, 0, 2.4 * i)) *
                Imath::M44d().translate(place * std::sqrt(i / 18.0) + Imath::V3d(0, 0, 0.01 * i)));
    }
    addQuad({0, 0, -1}, 4, 3);
    addSun({0.5, -0.3, -1}, Imath::V3d(0.3));
    addSun({-0.6, 0.2, -1}, Imath::V3d(0.2, 0.3, 0.3));
    addLight(LightKind::Point, Imath::V3d(0.4)).position = {-1, 0, 5};
    lightSet.ambient = Imath::V3d(0.1);
}

std::shared_ptr<Mesh> tangentQuadMesh(double halfSide) {
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
    return renderWith(test, frontCamera(eye, 0.5), squareOptions(1), PROBE_MODULE, probe, stats);
}

Imath::V3d colorOf(const TestScene& test, const std::optional<StateBlock>& probe) {
    return displayed(onePixel(test, probe), 0, 0);
}

Imath::V3d encoded(const Imath::V3d& linear) {
    return {toEncoded(linear.x), toEncoded(linear.y), toEncoded(linear.z)};
}

void expectColor(const Imath::V3d& actual, const Imath::V3d& expected) {
    EXPECT_LT((actual - expected).length(), 2e-6) << actual << " instead of " << expected;
}

}  // namespace tavora::studio
