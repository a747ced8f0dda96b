// Materials and what they take from images.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "studio/scene/gltf/uri.h"
#include "tests/scene/gltf_builder.h"

namespace tavora::studio {
namespace {

using Imath::V2f, Imath::V3f, Imath::V4f;
using testing::EndsWith, testing::HasSubstr;

constexpr const char* kWebp =  // one pixel
    "data:image/webp;base64,UklGRhoAAABXRUJQVlA4TA0AAAAvAAAAEAcQERGIiP4HAA==";

GltfBuilder withMaterial(const Json& material) {
    GltfBuilder file;
    file.triangle();
    file.add("materials", material);
    return file;
}

Surface surfaceOf(const GltfBuilder& file) {
    return file.read().surfaces.at(0);
}

TEST(GltfMaterials, FactorsAndModesHaveTheirDefaults) {
    const Surface plain = surfaceOf(withMaterial(Json::object()));
    EXPECT_EQ(plain.name, "Material 0");
    EXPECT_TRUE(plain.baseColor == V4f(1) && plain.emissive == V3f(0) && plain.metallic == 1);
    EXPECT_TRUE(plain.alphaMode == AlphaMode::Opaque && plain.alphaCutoff == 0.5F);
    EXPECT_FALSE(plain.doubleSided || plain.unlit);
    const GltfBuilder glass = withMaterial(R"({"name": "Glass", "doubleSided": true,
        "alphaMode": "MASK", "alphaCutoff": 0.25, "emissiveFactor": [0.5, 0, 1],
        "pbrMetallicRoughness": {"baseColorFactor": [0.1, 0.2, 0.3, 0.4], "metallicFactor": 0.5,
                                 "roughnessFactor": 0.75},
        "extensions": {"KHR_materials_unlit": {},
                       "KHR_materials_emissive_strength": {"emissiveStrength": 4},
                       "KHR_materials_transmission": {"transmissionFactor": 0.5}},
        "extras": {"tavora": {"selfShadow": false, "castsShadows": 0, "receivesShadows": false}}})"_j);
    const Scene scene = glass.read();
    const Surface& full = scene.surfaces.at(0);
    EXPECT_TRUE(full.baseColor == V4f(0.1F, 0.2F, 0.3F, 0.4F) && full.emissive == V3f(2, 0, 4));
    EXPECT_TRUE(full.metallic == 0.5F && full.roughness == 0.75F);
    EXPECT_TRUE(full.alphaMode == AlphaMode::Mask && full.alphaCutoff == 0.25F);
    EXPECT_TRUE(full.doubleSided && full.unlit && full.castsShadows && !full.selfShadow &&
                !full.receivesShadows);
    EXPECT_THAT(scene.warnings, testing::Contains(HasSubstr("surface Glass: its castsShadows is")));
    const Surface other = surfaceOf(withMaterial(R"({"alphaMode": "BLEND", "extensions":
        {"KHR_materials_diffuse_transmission": {}, "KHR_materials_pbrSpecularGlossiness":
            {"diffuseFactor": [1, 0.5, 0, 1], "glossinessFactor": 0.75}}})"_j));
    EXPECT_TRUE(other.alphaMode == AlphaMode::Blend && other.roughness == 0.25F &&
                other.baseColor == V4f(1, 0.5F, 0, 1));
    EXPECT_TRUE(full.translucencyFactor == 0.5F && full.translucencyComponent == Component::Red &&
                other.translucencyComponent == Component::Alpha);
}

/// A material with a base-colour texture from `image`; `info` beside its index.
GltfBuilder textured(const Json& image, Json info = Json::object()) {
    info["index"] = 0;
    GltfBuilder file = withMaterial({{"pbrMetallicRoughness", {{"baseColorTexture", info}}}});
    file.add("textures", {{"source", 0}, {"sampler", 0}});
    file.add("samplers", Json::object());
    file.add("images", image);
    return file;
}

TEST(GltfMaterials, TexturesSayHowToWrapFilterAndTransform) {
    GltfBuilder file = textured({{"uri", kRedPng}}, {{"texCoord", 1}});
    const TextureUse plain = *surfaceOf(file).baseColorTexture;
    EXPECT_TRUE(plain.wrapS == Wrap::Repeat && plain.mipmaps && plain.uvSet == 1);
    file.document["samplers"][0] =
        R"({"wrapS": 33071, "wrapT": 33648, "magFilter": 9728, "minFilter": 9728})"_j;
    file.document["materials"][0]["pbrMetallicRoughness"]["baseColorTexture"]["extensions"] =
        R"({"KHR_texture_transform":
            {"offset": [0.5, 0.25], "rotation": 1.5, "scale": [2, 3], "texCoord": 2}})"_j;
    const TextureUse use = *surfaceOf(file).baseColorTexture;
    EXPECT_TRUE(use.wrapS == Wrap::ClampToEdge && use.wrapT == Wrap::MirroredRepeat);
    EXPECT_TRUE(use.magnify == Filter::Nearest && use.minify == Filter::Nearest && !use.mipmaps);
    EXPECT_TRUE(use.uvSet == 2 && use.rotation == 1.5F);
    EXPECT_TRUE(use.offset == V2f(0.5F, 0.25F) && use.scale == V2f(2, 3));
    file.document["samplers"][0] = {{"minFilter", 9986}};
    const TextureUse levels = *surfaceOf(file).baseColorTexture;
    EXPECT_TRUE(levels.minify == Filter::Nearest && levels.mipmaps);
}

TEST(GltfMaterials, ImagesComeFromUrisFilesAndViewsAndAreDecodedOnce) {
    const std::vector<std::uint8_t> red = {255, 0, 0, 127}, png = *dataOfUri(kRedPng);
    GltfBuilder file = textured({{"uri", kRedPng}});
    file.add("materials", file.document["materials"][0]);
    file.add("images", {{"uri", "unused-and-missing.png"}});
    const Scene scene = file.read();
    ASSERT_EQ(scene.images.size(), 1U);
    EXPECT_EQ(scene.images[0].rgba, red);

    file.document["images"][1] = {{"uri", kWebp}, {"name", "better"}};
    file.document["textures"][0]["extensions"]["EXT_texture_webp"]["source"] = 1;
    file.document["extensionsRequired"] = {"EXT_texture_webp"};
    EXPECT_EQ(file.read().images.at(0).name, "better");

    const TemporaryFolder folder;
    GltfBuilder inside = textured(Json::object());
    inside.document["images"][0] = {{"bufferView", inside.view(png)}, {"mimeType", "image/png"}};
    EXPECT_EQ(readGltf(inside.write(folder, true)).images.at(0).rgba, red);
    putBytes(folder / "one zz.png", {png.begin(), png.end()});
    const GltfBuilder beside = textured({{"uri", "one%20%7a%7A.png"}});
    EXPECT_EQ(readGltf(beside.write(folder)).images.at(0).rgba, red);
}

TEST(GltfMaterials, TexturesThatCannotBeUsedAreNamed) {
    GltfBuilder sourceless = textured({{"uri", kRedPng}});
    sourceless.document["textures"][0].erase("source");
    GltfBuilder foreign = sourceless;
    foreign.document["textures"][0]["extensions"]["KHR_texture_basisu"]["source"] = 0;
    const std::pair<GltfBuilder, const char*> cases[] = {
        {textured({{"uri", "gone.png"}}), "the texture \"gone.png\" cannot be read"},
        {textured({{"uri", "scene.bin"}}), "\"scene.bin\" is neither PNG, JPEG nor WebP"},
        {textured({{"name", "Bark"}}), "\"Bark\" is empty"},
        {textured({{"uri", kRedPng}}, {{"texCoord", 4}}), "UV set 4"},
        {foreign, "texture 0 is stored for KHR_texture_basisu alone"}};
    for (const auto& [file, says] : cases)
        EXPECT_THAT(file.refused(), HasSubstr(says));
    EXPECT_FALSE(surfaceOf(sourceless).baseColorTexture);
    EXPECT_THAT(sourceless.read().notes,
                testing::ElementsAre(HasSubstr("textures that name no image")));
}

TEST(GltfMaterials, NormalMapsMayBeLeftOutAndTangentsBendWithTheMesh) {
    GltfBuilder file = textured({{"uri", kRedPng}});
    Json& material = file.document["materials"][0];
    material = R"({"name": "M", "normalTexture": {"index": 0, "scale": 0.5}})"_j;
    file.primitive()["material"] = 0;
    file.attribute("NORMAL", GltfBuilder::upward(), "VEC3");
    const auto tangentOf = [&](std::size_t corner) {
        return firstMesh(file.read()).tangents.at(0)[corner];
    };
    EXPECT_TRUE(firstMesh(file.read()).tangents.empty()) << "without UVs";
    file.attribute<float>("TEXCOORD_0", {0, 0, 0, 1, 1, 0}, "VEC2");
    EXPECT_EQ(tangentOf(0), V4f(0, 1, 0, 1)) << "made";
    file.attribute<float>("TANGENT", {3, 4, 0, -1, 3, 4, 0, -1, 3, 4, 0, -1}, "VEC4");
    EXPECT_EQ(tangentOf(2), V4f(0.6F, 0.8F, 0, -1)) << "read";
    const int turns = file.accessor<float>({-3, 0, 0, -3, 0, 0, -3, 0, 0}, "VEC3");
    file.primitive()["targets"] = {{{"TANGENT", turns}}};
    file.document["meshes"][0]["weights"] = {0.2};
    EXPECT_EQ(tangentOf(1), V4f(0, 0.8F, 0, -1)) << "morphed";
    file.attribute("JOINTS_0", std::vector<std::uint8_t>(12, 0), "VEC4");
    file.attribute("WEIGHTS_0", std::vector<float>(12, 0.5F), "VEC4");
    file.add("skins", {{"joints", {file.root({{"scale", {1, -1, 1}}})}}});
    file.document["nodes"][0]["skin"] = 0;
    EXPECT_EQ(tangentOf(1), V4f(0, -1, 0, 1)) << "mirrored";

    const Surface surface = surfaceOf(file);
    EXPECT_TRUE(surface.normalTexture->isData && surface.normalScale == 0.5F);
    material["extras"]["tavora"]["normalMap"] = false;
    EXPECT_FALSE(surfaceOf(file).normalTexture || surfaceOf(file).normalMap);
    EXPECT_TRUE(firstMesh(file.read()).tangents.empty()) << "nothing asks for them";
    material.erase("extras");
    file.document["images"][0] = {{"uri", "gone.png"}};
    EXPECT_FALSE(surfaceOf(file).normalTexture);
    EXPECT_THAT(file.read().warnings,
                testing::ElementsAre(HasSubstr("surface M goes without its normal map")));
}

TEST(GltfMaterials, AvatarsAreLitThoughAFallbackSaysUnlit) {
    GltfBuilder file = withMaterial(R"({"extensions": {"KHR_materials_unlit": {},
        "VRMC_materials_mtoon": {"shadeColorFactor": [0.5, 0.25, 2], "shadingShiftFactor": -0.3,
                                 "shadingToonyFactor": 0.95}}})"_j);
    file.document["extensionsRequired"] = {"VRMC_materials_mtoon", "VRMC_vrm"};
    file.primitive()["material"] = 0;
    file.primitive()["attributes"]["COLOR_0"] = 0;
    const Scene scene = file.read();
    const Surface& surface = scene.surfaces.at(0);
    ASSERT_TRUE(surface.toon && !surface.unlit && firstMesh(scene).colors.empty());
    EXPECT_EQ(surface.toon->shadeColor, V3f(0.5F, 0.25F, 1));
    EXPECT_TRUE(surface.toon->shift == -0.3F && surface.toon->toony == 0.95F);
    // Of version 0: a blend from 0.2 to 0.2 + a quarter of the rest.
    GltfBuilder old = withMaterial(R"({"extensions": {"KHR_materials_unlit": {}}})"_j);
    old.document["extensions"]["VRM"]["materialProperties"] = R"([{"shader": "VRM/MToon",
        "floatProperties": {"_ShadeShift": 0.2, "_ShadeToony": 0.75},
        "vectorProperties": {"_ShadeColor": [1, 0.5, 0, 1]}}])"_j;
    const Surface older = surfaceOf(old);
    ASSERT_TRUE(older.toon && !older.unlit);
    EXPECT_NEAR(older.toon->shift, -0.3, 1e-6);
    EXPECT_NEAR(older.toon->toony, 0.9, 1e-6);
    EXPECT_NEAR(older.toon->shadeColor.y, 0.2140, 1e-4);
}

TEST(GltfMaterials, WhatIsNotDrawnIsSaidOnceWithTheMaterialsThatAskForIt) {
    GltfBuilder file = withMaterial(R"({"name": "A", "occlusionTexture": {"index": 9},
        "extensions": {"KHR_materials_clearcoat": {}, "VRMC_materials_mtoon":
            {"outlineWidthMode": "worldCoordinates", "parametricRimColorFactor": [0, 0, 0]}}})"_j);
    file.add("materials", R"({"name": "B", "occlusionTexture": {}, "normalTexture": 1})"_j);
    file.add("textures", R"({"source": 0, "extensions": {"ACME_pictures": {}}})"_j);
    file.add("images", Json::object());
    file.document["extensionsUsed"] = {"KHR_materials_clearcoat", "ACME_wind", "VRMC_vrm",
                                       "ACME_pictures"};
    const Scene scene = file.read();
    EXPECT_THAT(scene.notes,
                testing::ElementsAre(
                    EndsWith("occlusion textures are not drawn (A, B)"),
                    EndsWith("outlines are not drawn; the shader's edge band may stand in (A)"),
                    EndsWith("what KHR_materials_clearcoat adds is not drawn (A)"),
                    HasSubstr("textures stored for ACME_pictures are not read"),
                    EndsWith("what ACME_wind adds is not drawn")));
    EXPECT_TRUE(scene.warnings.empty());
}

}  // namespace
}  // namespace tavora::studio
