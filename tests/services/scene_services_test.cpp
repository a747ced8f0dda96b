// Services that answer about the bound scene: items, lights, textures.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "host/services/item_info.h"
#include "host/services/light_info.h"
#include "host/services/surface.h"
#include "host/services/texture.h"
#include "studio/services/service_binding.h"
#include "tests/services/service_test.h"

namespace tavora::studio {
namespace {

using testing::ElementsAre;

const HostItemInfo& items() {
    return serviceTable<HostItemInfo>(HOST_ITEM_INFO_SERVICE);
}

std::vector<std::string> namesOf(int itemType) {
    std::vector<std::string> names;
    for (HostItemId item = items().first(itemType, nullptr); item != nullptr;
         item = items().next(item)) {
        names.emplace_back(items().name(item));
    }
    return names;
}

std::unique_ptr<Light> light(const std::string& name) {
    auto made = std::make_unique<Light>();
    made->name = name;
    return made;
}

/// Two objects of one triangle, three lights, a camera; the second surface has
/// a texture whose left texel is red and half clear, its right one solid.
struct SmallScene {
    SmallScene() {
        scene.surfaces.resize(2);
        scene.images.push_back({"image", 2, 1, {255, 0, 0, 51, 102, 0, 0, 255}});
        TextureUse use;
        use.magnify = use.minify = Filter::Nearest;
        use.mipmaps = false;
        scene.surfaces[0].emissiveTexture.emplace().image = -1;  // of no source
        scene.surfaces[1].baseColorTexture = use;
        scene.surfaces[1].translucencyTexture = use;
        scene.surfaces[1].translucencyFactor = 0.5F;
        auto mesh = std::make_shared<Mesh>();
        mesh->positions = {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}};
        mesh->normals.assign(3, {0, 0, 1});
        mesh->uvs[0] = {{0, 0}, {1, 0}, {0, 1}};
        mesh->triangles = {{0, 1, 2}};
        for (const char* name : {"left", "right"}) {
            auto object = std::make_unique<Object>();
            object->name = name;
            object->parts.push_back({mesh, 1, 0});
            scene.objects.push_back(std::move(object));
        }
        scene.cameras.resize(1);
        scene.cameras[0].name = "eye";
        for (const char* name : {"Key", "Fill", "Key.001"})
            rig.own.push_back(light(name));
        for (const auto& one : rig.own)
            rig.lights.push_back({one.get(), Imath::V3d(0.25, 0.5, 1), 1});
        rig.ambient = {0.1, 0.2, 0.3};
    }
    Scene scene;
    LightRig rig;
};

TEST(ItemInfo, WalksTheBoundScene) {
    const SmallScene small;
    const SceneIndex index(small.scene);
    EXPECT_THAT(namesOf(HOST_ITEM_LIGHT), ElementsAre());
    const ServiceBinding binding(index, small.rig);
    EXPECT_THAT(namesOf(HOST_ITEM_LIGHT), ElementsAre("Key", "Fill", "Key.001"));
    EXPECT_THAT(namesOf(HOST_ITEM_OBJECT), ElementsAre("left", "right"));
    EXPECT_THAT(namesOf(HOST_ITEM_CAMERA), ElementsAre("eye"));
    EXPECT_EQ(items().first(7, nullptr), nullptr);
    int stranger = 0;
    for (void* unknown : {static_cast<void*>(nullptr), static_cast<void*>(&stranger),
                          static_cast<void*>(const_cast<char*>(
                              reinterpret_cast<const char*>(&small.rig.lights[1]) + 1))}) {
        EXPECT_EQ(items().name(static_cast<HostItemId>(unknown)), nullptr);
        EXPECT_EQ(items().next(static_cast<HostItemId>(unknown)), nullptr);
    }
}

TEST(ServiceBinding, BelongsToItsThreadAndScope) {
    const SmallScene small;
    const SceneIndex index(small.scene);
    const LightRig dark;
    const ServiceBinding outer(index, small.rig);
    {
        const ServiceBinding inner(index, dark);
        EXPECT_THAT(namesOf(HOST_ITEM_LIGHT), ElementsAre());
    }
    EXPECT_EQ(namesOf(HOST_ITEM_LIGHT).size(), 3U);
    std::thread([] { EXPECT_EQ(ServiceBinding::current(), nullptr); }).join();
}

TEST(LightInfo, TellsColorsAndFlags) {
    SmallScene small;
    auto& second = const_cast<Light&>(*small.rig.own[1]);
    second.makesHighlights = false;
    second.range = 10;
    const SceneIndex index(small.scene);
    const ServiceBinding binding(index, small.rig);
    const auto& service = serviceTable<HostLightInfo>(HOST_LIGHT_INFO_SERVICE);
    double color[3] = {-1, -1, -1};
    service.ambient(0, color);
    EXPECT_THAT(color, ElementsAre(0.1, 0.2, 0.3));
    HostItemId first = items().first(HOST_ITEM_LIGHT, nullptr);
    service.color(first, 0, color);
    EXPECT_THAT(color, ElementsAre(0.25, 0.5, 1));
    EXPECT_EQ(service.flags(first), 0);
    // A range counts only where light falls off.
    EXPECT_EQ(service.flags(items().next(first)), HOST_LIGHT_NO_SPECULAR);
    small.rig.falloff = true;
    EXPECT_EQ(service.flags(items().next(first)),
              HOST_LIGHT_NO_SPECULAR | HOST_LIGHT_LIMITED_RANGE);
    service.color(nullptr, 0, color);
    EXPECT_THAT(color, ElementsAre(0, 0, 0));
}

TEST(Textures, AreFoundByChannelAndReadAtThePolygon) {
    const SmallScene small;
    const SceneIndex index(small.scene);
    const ServiceBinding binding(index, small.rig);
    const auto& textures = serviceTable<HostTextureFunctions>(HOST_TEXTURE_SERVICE);
    const auto find = serviceTable<HostSurfaceFunctions>(HOST_SURFACE_SERVICE).channelTexture;
    EXPECT_EQ(find(index.surfaceId(0), HOST_CHANNEL_BASE_COLOR), nullptr);
    EXPECT_EQ(find(index.surfaceId(1), "Bump"), nullptr);
    EXPECT_EQ(find(nullptr, HOST_CHANNEL_BASE_COLOR), nullptr);
    HostTextureId base = find(index.surfaceId(1), HOST_CHANNEL_BASE_COLOR);
    HostTextureId translucency = find(index.surfaceId(1), HOST_CHANNEL_TRANSLUCENCY);
    ASSERT_NE(base, nullptr);
    ASSERT_NE(translucency, nullptr);

    for (const auto& [parameter, expected] : {std::pair(HOST_LAYER_SCALE, 1.0),
                                              {HOST_LAYER_POSITION, 0.0},
                                              {HOST_LAYER_ROTATION, 0.0}}) {
        double all[3] = {-1, -1, -1};
        EXPECT_EQ(textures.layerParameter(nullptr, parameter, all), 0);
        EXPECT_EQ(textures.layerParameter(textures.firstLayer(base), parameter, all), 1);
        EXPECT_THAT(all, ElementsAre(expected, expected, expected));
        EXPECT_EQ(textures.layerParameter(textures.firstLayer(base), 99, all), 0);
    }

    HostTexturePoint point{};
    point.polygonId = index.polygonId(1, 0);
    point.vertexWeights[0] = 0.9F;
    point.vertexWeights[1] = 0.1F;
    double color[3];
    EXPECT_DOUBLE_EQ(textures.evaluate(base, &point, color), 51 / 255.0);
    EXPECT_THAT(color, ElementsAre(1, 0, 0));
    EXPECT_DOUBLE_EQ(textures.evaluate(translucency, &point, color), 0.5);
    std::swap(point.vertexWeights[0], point.vertexWeights[1]);
    EXPECT_DOUBLE_EQ(textures.evaluate(base, &point, color), 1);
    EXPECT_DOUBLE_EQ(textures.evaluate(translucency, &point, color), 0.4 * 0.5);

    for (HostPolygonId unknown : {HostPolygonId{}, index.polygonId(1, 1), index.polygonId(2, 0)}) {
        point.polygonId = unknown;
        EXPECT_EQ(textures.evaluate(base, &point, color), 0);
        EXPECT_THAT(color, ElementsAre(0, 0, 0));
    }
    EXPECT_EQ(textures.evaluate(nullptr, &point, color), 0);
}

TEST(Textures, AreTheirMeanWhereASpotCoversThemWhole) {
    SmallScene small;
    TextureUse& use = *small.scene.surfaces[1].baseColorTexture;
    use.minify = Filter::Linear;
    use.mipmaps = true;
    use.scale = {8, 4};  // of which a spot a fifth as wide as the triangle covers one
    const SceneIndex index(small.scene);
    const ServiceBinding binding(index, small.rig);
    HostTexturePoint point{};
    point.polygonId = index.polygonId(1, 0);
    point.vertexWeights[0] = 1;
    for (const int vertex : {0, 1, 2})
        point.vertexPositions[vertex][0] = vertex == 1 ? 4 : 3;
    point.vertexPositions[2][1] = 1;
    const auto alpha = [&](double spot) {
        double color[3];
        point.spotSize = spot;
        return serviceTable<HostTextureFunctions>(HOST_TEXTURE_SERVICE)
            .evaluate(serviceTable<HostSurfaceFunctions>(HOST_SURFACE_SERVICE)
                          .channelTexture(index.surfaceId(1), HOST_CHANNEL_BASE_COLOR),
                      &point, color);
    };
    EXPECT_NEAR(alpha(0.2), (51 + 255) / 2 / 255.0, 1e-3);
    EXPECT_NEAR(alpha(0.001), 51 / 255.0, 1e-3);
}

}  // namespace
}  // namespace tavora::studio
