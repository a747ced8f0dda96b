// Where nodes put things: transforms, skins, morphs, lights and cameras, with
// answers known on paper.

#include <cmath>
#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/scene/gltf_builder.h"

namespace tavora::studio {
namespace {

using Imath::V3d, Imath::V3f;
using testing::HasSubstr;

const double kHalf = std::sqrt(0.5);

void expectNear(const V3d& a, const V3d& b, const std::string& what = "") {
    EXPECT_LT((a - b).length(), 1e-6) << what << ": " << a << " is not " << b;
}

TEST(GltfPose, ScalesThenTurnsThenMovesThenTheParents) {
    GltfBuilder file;
    // A quarter turn about z: x to y.
    file.triangle({{"translation", {10, 0, 0}}, {"rotation", {0, 0, 2, 2}}, {"scale", {2, 3, 4}}});
    file.triangle({{"matrix", {0, 1, 0, 0, -1, 0, 0, 0, 0, 0, 1, 0, 5, 0, 0, 1}}});
    file.add("nodes", {{"scale", {1, 1, -2}}, {"children", {1}}, {"mesh", 0}});
    file.document["scenes"] = R"([{"nodes": [0]}, {"nodes": [0, 2]}])"_j;
    file.document["scene"] = 1;
    const Scene scene = file.read();
    ASSERT_EQ(scene.objects.size(), 3U);
    expectNear(V3d(1, 1, 1) * scene.objects[0]->objectToWorld, V3d(7, 2, 4));
    expectNear(V3d(1, 2, 3) * scene.objects[2]->objectToWorld, V3d(3, 1, -6), "by columns");
    EXPECT_TRUE(!scene.objects[0]->mirrored && scene.objects[2]->mirrored);
    file.document.erase("scene");
    EXPECT_EQ(file.read().objects.size(), 1U) << "the first scene";
    file.document.erase("scenes");
    EXPECT_EQ(file.read().objects.size(), 3U) << "no scene: all nodes";
}

TEST(GltfPose, SqueezedNodesKeepNormalsAndVanishedOnesAreLeftOut) {
    const Json turns[] = {{0, 0, 0, 1}, {kHalf, 0, 0, kHalf}, {0.1, 0.2, -0.3, 0.9}};
    for (const Json& inner : turns) {
        for (const Json& outer : turns) {
            GltfBuilder file;
            file.triangle({{"rotation", inner}});
            file.document["scenes"][0]["nodes"] = {2};
            file.add("nodes", {{"scale", {2, 2, 0}}, {"children", {0}}});
            file.add("nodes", {{"rotation", outer}, {"children", {1}}});
            EXPECT_NEAR(file.read().objects.at(0)->objectToWorld.determinant(), 6.6e-6, 2.2e-6);
            file.document["nodes"][1]["scale"] = {1, 0, 0};
            EXPECT_TRUE(file.read().objects.empty());
        }
    }
}

/// A triangle that hangs on two joints, of which the second stands outside the
/// scene that is drawn; with one weight alike for all corners.
GltfBuilder skinned(const Json& jointA, const Json& jointB) {
    GltfBuilder file;
    file.triangle({{"skin", 0}, {"translation", {100, 100, 100}}});
    file.attribute("JOINTS_0", std::vector<std::uint8_t>(12, 0), "VEC4");
    file.attribute<float>("WEIGHTS_0", {1, 0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0}, "VEC4");
    file.root(jointA);
    file.add("nodes", jointB);
    file.add("skins", {{"joints", {1, 2}}});
    return file;
}

TEST(GltfPose, SkinsBlendTheirJointsByRelativeWeight) {
    GltfBuilder file = skinned({{"translation", {0, 0, 8}}}, {{"translation", {0, 0, 4}}});
    file.attribute<std::uint8_t>("JOINTS_0", {0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0}, "VEC4");
    file.attribute<float>("WEIGHTS_0", {0.25F, 0, 0, 0, 0.5F, 0, 0, 0, 0.1F, 0.3F, 0, 0}, "VEC4");
    file.attribute("JOINTS_1", std::vector<std::uint8_t>(12, 0), "VEC4");
    file.attribute<float>("WEIGHTS_1", {0, 0, 0, 0, 0.5F, 0, 0, 0, 0, 0, 0, 0}, "VEC4");
    const Scene scene = file.read();
    // Weights below 1, the node's own place unused; half by the first set, half by the second.
    EXPECT_EQ(firstMesh(scene).positions, (std::vector{V3f(0, 0, 8), V3f(1, 0, 6), V3f(0, 1, 5)}));
    EXPECT_EQ(scene.objects[0]->objectToWorld, Imath::M44d());
    EXPECT_EQ(scene.bounds.max.z, 8);
}

TEST(GltfPose, SkinnedNormalsTurnAndMirrorWithTheirJointsAfterTheInverseBind) {
    const Json joint = {{"scale", {-1, 2, 3}}, {"rotation", {kHalf, 0, 0, kHalf}}};  // z to -y
    for (const bool stored : {true, false}) {
        GltfBuilder file = skinned(joint, joint);
        if (stored) file.attribute("NORMAL", GltfBuilder::upward(), "VEC3");
        std::vector<float> bind = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, -3, 0, 0, 1};
        bind.insert(bind.end(), bind.begin(), bind.end());
        file.document["skins"][0]["inverseBindMatrices"] = file.accessor(bind, "MAT4");
        const Scene scene = file.read();
        EXPECT_TRUE(scene.objects[0]->mirrored);
        expectNear(V3d(firstMesh(scene).positions[2]), V3d(3, 0, 2));
        expectNear(V3d(firstMesh(scene).normals[0]), V3d(0, -1, 0), stored ? "stored" : "made");
    }
}

TEST(GltfPose, MorphWeightsOfTheNodeReplaceThoseOfTheMesh) {
    GltfBuilder file;
    file.triangle();
    file.attribute("NORMAL", GltfBuilder::upward(), "VEC3");
    const int sideways = file.accessor<float>({1, 0, 0, 0, 0, 0, 0, 0, 0}, "VEC3");
    const int lift = file.accessor<float>({0, 0, 1, 0, 0, 0, 0, 0, 0}, "VEC3");
    file.primitive()["targets"] = {{{"POSITION", lift}},
                                   {{"POSITION", sideways}, {"NORMAL", sideways}}};
    file.document["meshes"][0]["weights"] = {0.5, 0};
    file.root({{"mesh", 0}, {"weights", {0, 1}}});
    file.root({{"mesh", 0}, {"weights", {0, 0}}});
    file.root({{"mesh", 0}});
    const Scene scene = file.read();
    const auto meshAt = [&](std::size_t i) { return scene.objects.at(i)->parts.at(0).mesh; };
    EXPECT_EQ(meshAt(0)->positions[0], V3f(0, 0, 0.5F));
    EXPECT_EQ(meshAt(1)->positions[0], V3f(1, 0, 0));
    expectNear(V3d(meshAt(1)->normals[0]), V3d(kHalf, 0, kHalf));
    EXPECT_EQ(meshAt(2)->positions[0], V3f(0));
    EXPECT_EQ(meshAt(0), meshAt(3)) << "deformed alike, shared";
    file.document["nodes"] = R"([{"mesh": 0, "weights": [0, 0.5]}])"_j;
    file.document["scenes"][0]["nodes"] = {0};
    file.primitive()["attributes"].erase("NORMAL");
    file.primitive()["targets"][1] = {
        {"POSITION", file.accessor<float>({0, 0, 0, 0, 0, 0, 0, -2, 2}, "VEC3")}};
    EXPECT_EQ(firstMesh(file.read()).normals[0], V3f(0, -1, 0)) << "made normals follow";
}

Json& lightsOf(GltfBuilder& file) {
    return file.document["extensions"]["KHR_lights_punctual"]["lights"];
}

Json onLight(int index, Json node = Json::object()) {
    node["extensions"]["KHR_lights_punctual"]["light"] = index;
    return node;
}

TEST(GltfPose, LightsShineAlongMinusZAsTheySayAndThenTheirNodes) {
    GltfBuilder file;
    lightsOf(file) = R"([{"type": "spot", "color": [1, 0.5, 0.25], "intensity": 40, "range": 7,
            "spot": {"innerConeAngle": 0.2, "outerConeAngle": 0.4}, "extras": {"tavora":
                {"radius": 0.5}}}, {"type": "point"}, {"type": "directional", "extras": {"tavora":
                {"angle": 60, "makesHighlights": false, "castsShadow": false}}},
        {"type": "spot", "spot": {"innerConeAngle": 1}, "extras": {"tavora":
                {"radius": -1, "angle": 3}}}])"_j;
    const Json nodes = R"([{}, {"radius": 2, "makesHighlights": "no"}, {}, {"angle": 500},
        {"radius": 2, "angle": "wide", "makesHighlights": true, "castsShadow": 1}, {}])"_j;
    constexpr int kLightOf[] = {0, 0, 1, 2, 2, 3};
    for (std::size_t i = 0; i < 6; ++i)
        file.root(onLight(kLightOf[i], {{"extras", {{"tavora", nodes[i]}}}}));
    file.document["nodes"][0].update({{"translation", {1, 2, 3}},
                                      {"rotation", {0, kHalf, 0, kHalf}},  // -z to -x
                                      {"scale", {5, -1, 0.1}}});
    const Scene scene = file.read();
    std::vector<std::string> lights;
    for (const auto& light : scene.lights) {
        lights.push_back(
            fmt::format("{}{}{} {} {} {} {:.0f} {:.3f} {:.3f}", static_cast<int>(light->kind),
                        light->makesHighlights ? 'h' : '-', light->castsShadow ? 's' : '-',
                        light->intensity, light->range, light->radius, light->angle * 180 / M_PI,
                        std::acos(light->innerCosine), std::acos(light->outerCosine)));
    }
    EXPECT_THAT(lights,
                testing::ElementsAre("2hs 40 7 0.5 0 0.200 0.400", "2hs 40 7 2 0 0.200 0.400",
                                     "1hs 1 inf 0 0 0.000 0.785", "0-- 1 inf 0 179 0.000 0.785",
                                     "0h- 1 inf 0 60 0.000 0.785", "2hs 1 inf 0 0 0.785 0.785"));
    expectNear(scene.lights[0]->position, V3d(1, 2, 3));
    expectNear(scene.lights[0]->direction, V3d(-1, 0, 0));
    EXPECT_EQ(scene.lights[0]->color, V3f(1, 0.5F, 0.25F));
    EXPECT_EQ(scene.warnings.size(), 7U);
    for (const char* place : {"lights/3/extras/tavora/radius", "lights/3/extras/tavora/angle",
                              "nodes/1/extras/tavora/makesHighlights"})
        EXPECT_THAT(scene.warnings, testing::Contains(HasSubstr(place)));
}

TEST(GltfPose, NamesAreUniqueAndLightNamesFit79Bytes) {
    GltfBuilder file;
    std::string umlauts;
    for (int i = 0; i < 60; ++i)
        umlauts += "\xc3\xa4";
    lightsOf(file) = {{{"type", "point"}, {"name", umlauts}}, {{"type", "point"}}};
    for (const auto& [light, name] : {std::pair{0, "Node"}, {0, ""}, {1, "L"}, {1, "L"}, {1, ""}})
        file.root(onLight(light, {{"name", name}}));
    file.document["materials"] = R"([{"name": "Red"}, {"name": "Red"}, {"name": "Default"}])"_j;
    const Scene scene = file.read();
    std::vector<std::string> names;
    for (const auto& light : scene.lights)
        names.push_back(light->name);
    for (const Surface& surface : scene.surfaces)
        names.push_back(surface.name);
    EXPECT_THAT(
        names, testing::ElementsAre(umlauts.substr(0, 78), umlauts.substr(0, 76) + " 2", "L", "L 2",
                                    "Light 1", "Red", "Red 2", "Default", "Default 2"));
}

TEST(GltfPose, CamerasAreRightHandedAndUnscaled) {
    GltfBuilder file;
    file.document["cameras"] = R"([{"type": "perspective", "perspective":
        {"yfov": 0.5, "znear": 0.1, "aspectRatio": 1.5}}, {"type": "orthographic",
        "name": "Plan", "orthographic": {"xmag": 4, "ymag": 2, "znear": 0, "zfar": 9}}])"_j;
    file.root({{"camera", 0}, {"scale", {-3, 2, 1}}, {"translation", {1, 2, 3}}});
    file.root({{"camera", 1}, {"rotation", {0, 1, 0, 0}}});
    const Scene scene = file.read();
    const Camera& seen = scene.cameras.at(0);
    const Camera& plan = scene.cameras.at(1);
    EXPECT_TRUE(seen.verticalFov == 0.5 && seen.aspect == 1.5);
    EXPECT_NEAR(seen.cameraToWorld.determinant(), 1, 1e-12);
    expectNear(V3d(0) * seen.cameraToWorld, V3d(1, 2, 3));
    EXPECT_TRUE(plan.orthographic && plan.halfHeight == 2 && plan.aspect == 2 &&
                plan.name == "Plan");
    expectNear(V3d(0, 0, -1) * plan.cameraToWorld, V3d(0, 0, 1));
}

TEST(GltfPose, AmbientIsAGreyOrAColour) {
    const std::pair<Json, std::optional<V3d>> cases[] = {
        {0.25, V3d(0.25)}, {{0, 0.5, 1}, V3d(0, 0.5, 1)}, {"dim", {}}, {{1, 2}, {}}, {-1, {}}};
    for (const auto& [value, ambient] : cases) {
        GltfBuilder file;
        file.triangle();
        file.document["scenes"][0]["extras"]["tavora"]["ambient"] = value;
        const Scene scene = file.read();
        EXPECT_EQ(scene.ambient, ambient) << value;
        EXPECT_EQ(scene.warnings.size(), ambient ? 0U : 1U) << value;
    }
}

}  // namespace
}  // namespace tavora::studio
