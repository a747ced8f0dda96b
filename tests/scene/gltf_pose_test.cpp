// Where nodes put things: transforms, skins, morphs, lights and cameras, with
// answers known on paper.

#include <cmath>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/scene/gltf_builder.h"

namespace tavora::studio {
namespace {

using Imath::V3d;
using Imath::V3f;
using testing::HasSubstr;

const double kHalf = std::sqrt(0.5);

void expectNear(const V3d& a, const V3d& b, const std::string& what = "") {
    EXPECT_LT((a - b).length(), 1e-6) << what << ": " << a << " is not " << b;
}

V3d world(const Object& object, const V3d& p) {
    return p * object.objectToWorld;
}

TEST(GltfPose, ScalesThenTurnsThenMovesThenTheParents) {
    GltfBuilder file;
    file.triangle({{"translation", {10, 0, 0}},
                   {"rotation", {0, 0, kHalf, kHalf}},  // a quarter turn about z: x to y
                   {"scale", {2, 3, 4}}});
    file.triangle({{"matrix", {0, 1, 0, 0, -1, 0, 0, 0, 0, 0, 1, 0, 5, 0, 0, 1}}});
    file.add("nodes", {{"scale", {1, 1, -2}}, {"children", {1}}});
    file.document["scenes"][0]["nodes"] = {0, 2};
    const Scene scene = file.read();
    expectNear(world(*scene.objects.at(0), V3d(1, 1, 1)), V3d(7, 2, 4));
    expectNear(world(*scene.objects.at(1), V3d(1, 2, 3)), V3d(3, 1, -6), "by columns");
    EXPECT_FALSE(scene.objects[0]->mirrored);
    EXPECT_TRUE(scene.objects[1]->mirrored);
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
            const Scene scene = file.read();
            ASSERT_EQ(scene.objects.size(), 1U);
            const double volume = scene.objects[0]->objectToWorld.determinant();
            EXPECT_GT(volume, 4e-6) << inner << outer;
            EXPECT_LT(volume, 9e-6) << inner << outer;
        }
    }
    for (const Json& scale : {Json{0, 0, 0}, Json{1, 0, 0}}) {
        GltfBuilder file;
        file.triangle({{"scale", scale}});
        EXPECT_TRUE(file.read().objects.empty()) << scale;
    }
}

TEST(GltfPose, OnlyTheChosenSceneIsDrawn) {
    GltfBuilder file;
    file.triangle({{"name", "first"}});
    file.add("nodes", {{"mesh", 0}, {"name", "second"}});
    file.add("scenes", {{"nodes", {1}}});
    file.document["scene"] = 1;
    Scene scene = file.read();
    ASSERT_EQ(scene.objects.size(), 1U);
    EXPECT_EQ(scene.objects[0]->name, "second");
    file.document.erase("scene");
    file.document.erase("scenes");
    EXPECT_EQ(file.read().objects.size(), 2U) << "no scene: all nodes";
}

/// A triangle whose corners hang on two joints, of which the second stands
/// outside the scene that is drawn.
struct Skinned {
    GltfBuilder file;
    Json attributes = {{"POSITION", file.accessor(GltfBuilder::corners(), "VEC3")}};

    void hang(const std::string& set = "0",
              const std::vector<std::uint8_t>& joints = std::vector<std::uint8_t>(12, 0),
              const std::vector<float>& weights = {1, 0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0}) {
        attributes["JOINTS_" + set] = file.accessor(joints, "VEC4");
        attributes["WEIGHTS_" + set] = file.accessor(weights, "VEC4");
    }

    Scene read(const Json& jointA, const Json& jointB) {
        const int mesh = file.mesh(attributes);
        file.root({{"mesh", mesh}, {"skin", 0}, {"translation", {100, 100, 100}}});
        file.root(jointA);
        file.add("nodes", jointB);
        file.add("skins", {{"joints", {1, 2}}});
        return file.read();
    }
};

TEST(GltfPose, SkinsBlendTheirJointsByRelativeWeight) {
    Skinned skinned;
    skinned.hang("0", {0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0},
                 {0.25F, 0, 0, 0, 0.5F, 0, 0, 0, 0.1F, 0.3F, 0, 0});
    skinned.hang("1", std::vector<std::uint8_t>(12, 0), {0, 0, 0, 0, 0.5F, 0, 0, 0, 0, 0, 0, 0});
    const Scene scene = skinned.read({{"translation", {0, 0, 8}}}, {{"translation", {0, 0, 4}}});
    const Mesh& mesh = firstMesh(scene);
    EXPECT_EQ(mesh.positions[0], V3f(0, 0, 8)) << "weights below 1, the node's own place unused";
    EXPECT_EQ(mesh.positions[1], V3f(1, 0, 6)) << "half by the first set, half by the second";
    EXPECT_EQ(mesh.positions[2], V3f(0, 1, 5));
    EXPECT_EQ(scene.objects[0]->objectToWorld, Imath::M44d());
    EXPECT_EQ(scene.bounds.max.z, 8);
}

TEST(GltfPose, SkinnedNormalsTurnAndMirrorWithTheirJointsAfterTheInverseBind) {
    const Json joint = {{"scale", {-1, 2, 3}}, {"rotation", {kHalf, 0, 0, kHalf}}};  // z to -y
    for (const bool stored : {true, false}) {
        Skinned skinned;
        if (stored) {
            skinned.attributes["NORMAL"] = skinned.file.accessor(GltfBuilder::upward(), "VEC3");
        }
        skinned.hang();
        std::vector<float> bind = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, -3, 0, 0, 1};
        bind.insert(bind.end(), bind.begin(), bind.end());
        const int accessor = skinned.file.accessor(bind, "MAT4");
        skinned.file.add("skins", {{"joints", {1, 2}}, {"inverseBindMatrices", accessor}});
        const Scene scene = skinned.read(joint, joint);
        EXPECT_TRUE(scene.objects[0]->mirrored);
        expectNear(V3d(firstMesh(scene).positions[2]), V3d(3, 0, 2));
        for (const V3f& n : firstMesh(scene).normals)
            expectNear(V3d(n), V3d(0, -1, 0), stored ? "stored" : "made");
    }
}

TEST(GltfPose, MorphWeightsOfTheNodeReplaceThoseOfTheMesh) {
    GltfBuilder file;
    const int mesh = file.mesh({{"POSITION", file.accessor(GltfBuilder::corners(), "VEC3")},
                                {"NORMAL", file.accessor(GltfBuilder::upward(), "VEC3")}});
    const int sideways = file.accessor<float>({1, 0, 0, 0, 0, 0, 0, 0, 0}, "VEC3");
    const int lift = file.accessor<float>({0, 0, 1, 0, 0, 0, 0, 0, 0}, "VEC3");
    file.primitive(mesh)["targets"] = {{{"POSITION", lift}},
                                       {{"POSITION", sideways}, {"NORMAL", sideways}}};
    file.document["meshes"][0]["weights"] = {0.5, 0};
    file.root({{"mesh", mesh}});
    file.root({{"mesh", mesh}, {"weights", {0, 1}}});
    file.root({{"mesh", mesh}, {"weights", {0, 0}}});
    file.root({{"mesh", mesh}});
    const Scene scene = file.read();
    const auto meshAt = [&](std::size_t i) { return scene.objects.at(i)->parts.at(0).mesh; };
    EXPECT_EQ(meshAt(0)->positions[0], V3f(0, 0, 0.5F));
    EXPECT_EQ(meshAt(0)->normals[0], V3f(0, 0, 1));
    EXPECT_EQ(meshAt(1)->positions[0], V3f(1, 0, 0));
    expectNear(V3d(meshAt(1)->normals[0]), V3d(kHalf, 0, kHalf));
    EXPECT_EQ(meshAt(2)->positions[0], V3f(0, 0, 0));
    EXPECT_EQ(meshAt(0), meshAt(3)) << "bent alike, shared";

    GltfBuilder bare;
    const int fold = bare.accessor<float>({0, 0, 0, 0, 0, 0, 0, -1, 1}, "VEC3");
    bare.triangle({{"weights", {1}}});  // (0,1,0) to (0,0,1)
    bare.primitive(0)["targets"] = {{{"POSITION", fold}}};
    const Scene bent = bare.read();
    for (const V3f& n : firstMesh(bent).normals)
        EXPECT_EQ(n, V3f(0, -1, 0)) << "made normals follow";
}

Json& lightsOf(GltfBuilder& file) {
    return file.document["extensions"]["KHR_lights_punctual"]["lights"];
}

Json onLight(int index, Json node = Json::object()) {
    node["extensions"]["KHR_lights_punctual"]["light"] = index;
    return node;
}

TEST(GltfPose, LightsShineAlongMinusZWithoutTheirNodesScale) {
    GltfBuilder file;
    lightsOf(file) =
        R"([{"type": "spot", "color": [1, 0.5, 0.25], "intensity": 40, "range": 7,
             "spot": {"innerConeAngle": 0.2, "outerConeAngle": 0.4}},
            {"type": "point"}, {"type": "directional"}, {"type": "spot", "spot": {}}])"_j;
    file.root(onLight(0, {{"translation", {1, 2, 3}},
                          {"rotation", {0, kHalf, 0, kHalf}},  // -z to -x
                          {"scale", {5, -1, 0.1}}}));
    for (int i = 1; i < 4; ++i)
        file.root(onLight(i));
    const Scene scene = file.read();
    ASSERT_EQ(scene.lights.size(), 4U);
    const Light& spot = *scene.lights[0];
    EXPECT_EQ(spot.kind, LightKind::Spot);
    expectNear(spot.position, V3d(1, 2, 3));
    expectNear(spot.direction, V3d(-1, 0, 0));
    EXPECT_EQ(spot.color, V3f(1, 0.5F, 0.25F));
    EXPECT_EQ(spot.intensity, 40);
    EXPECT_EQ(spot.range, 7);
    EXPECT_NEAR(spot.innerCosine, std::cos(0.2), 1e-15);
    EXPECT_NEAR(spot.outerCosine, std::cos(0.4), 1e-15);
    EXPECT_EQ(scene.lights[1]->kind, LightKind::Point);
    EXPECT_EQ(scene.lights[1]->intensity, 1);
    EXPECT_TRUE(std::isinf(scene.lights[1]->range));
    EXPECT_EQ(scene.lights[2]->kind, LightKind::Directional);
    EXPECT_NEAR(scene.lights[3]->outerCosine, std::sqrt(0.5), 1e-9);
}

TEST(GltfPose, SwitchesAndSizesAreThoseOfTheLightThenOfItsNode) {
    GltfBuilder file;
    lightsOf(file) = R"([{"type": "point", "extras": {"tavora": {"radius": 0.5}}},
        {"type": "directional", "extras": {"tavora": {"angle": 60, "makesHighlights": false,
                                                      "castsShadow": false}}},
        {"type": "spot", "spot": {}, "extras": {"tavora": {"radius": -1, "angle": 3}}}])"_j;
    const char* const nodes[] = {
        R"({})", R"({"radius": 2, "makesHighlights": "no"})",  // on the first light
        R"({})", R"({"radius": 2, "angle": "wide", "makesHighlights": true, "castsShadow": 1})",
        R"({})"};
    for (int i = 0; i < 5; ++i) {
        Json node;
        node["extras"]["tavora"] = Json::parse(nodes[i]);
        file.root(onLight(i / 2, node));
    }
    file.root(onLight(0, R"({"extras": [{"makesHighlights": false}]})"_j));
    const Scene scene = file.read();
    std::string switches;
    for (const auto& light : scene.lights)
        switches += {light->makesHighlights ? 'h' : '-', light->castsShadow ? 's' : '-', ' '};
    EXPECT_EQ(switches, "hs hs -- h- hs hs ");
    const double sixty = std::acos(0.5);
    const std::pair<double, double> sizes[] = {{0.5, 0}, {2, 0}, {0, sixty}, {0, sixty}, {0, 0}};
    for (std::size_t i = 0; i < 5; ++i) {
        EXPECT_EQ(scene.lights[i]->radius, sizes[i].first) << i;
        EXPECT_NEAR(scene.lights[i]->angle, sizes[i].second, 1e-12) << i;
    }
    EXPECT_THAT(
        scene.warnings,
        testing::UnorderedElementsAre(
            HasSubstr("lights/2/extras/tavora/radius"), HasSubstr("lights/2/extras/tavora/angle"),
            HasSubstr("nodes/1/extras/tavora/makesHighlights"),
            HasSubstr("nodes/3/extras/tavora/radius"), HasSubstr("nodes/3/extras/tavora/angle"),
            HasSubstr("nodes/3/extras/tavora/castsShadow"), HasSubstr("nothing to draw")));
}

TEST(GltfPose, NamesAreUniqueAndLightNamesFit79Bytes) {
    GltfBuilder file;
    std::string umlauts = "x";
    for (int i = 0; i < 60; ++i)
        umlauts += "\xc3\xa4";
    lightsOf(file) = {{{"type", "point"}, {"name", umlauts}}, {{"type", "point"}}};
    file.root(onLight(0));
    file.root(onLight(0));
    file.root(onLight(1, {{"name", "Lamp"}}));
    file.root(onLight(1, {{"name", "Lamp"}}));
    file.root(onLight(1));
    for (int i = 0; i < 3; ++i)
        file.add("materials", {{"name", i < 2 ? "Red" : "Default"}});
    const Scene scene = file.read();
    std::vector<std::string> names;
    for (const auto& light : scene.lights)
        names.push_back(light->name);
    EXPECT_THAT(names, testing::ElementsAre(umlauts.substr(0, 79), umlauts.substr(0, 77) + " 2",
                                            "Lamp", "Lamp 2", "Light 1"));
    EXPECT_EQ(scene.surfaces[1].name, "Red 2");
    EXPECT_EQ(scene.surfaces[3].name, "Default 2");
}

TEST(GltfPose, CamerasAreRightHandedAndUnscaled) {
    GltfBuilder file;
    file.add("cameras", R"({"type": "perspective", "perspective":
        {"yfov": 0.5, "znear": 0.1, "aspectRatio": 1.5}})"_j);
    file.add("cameras", R"({"type": "orthographic", "name": "Plan", "orthographic":
        {"xmag": 4, "ymag": 2, "znear": 0, "zfar": 9}})"_j);
    file.root({{"camera", 0}, {"scale", {-3, 2, 1}}, {"translation", {1, 2, 3}}});
    file.root({{"camera", 1}, {"rotation", {0, 1, 0, 0}}});
    const Scene scene = file.read();
    ASSERT_EQ(scene.cameras.size(), 2U);
    EXPECT_EQ(scene.cameras[0].verticalFov, 0.5);
    EXPECT_EQ(scene.cameras[0].aspect, 1.5);
    EXPECT_NEAR(scene.cameras[0].cameraToWorld.determinant(), 1, 1e-12);
    expectNear(V3d(0) * scene.cameras[0].cameraToWorld, V3d(1, 2, 3));
    EXPECT_TRUE(scene.cameras[1].orthographic);
    EXPECT_EQ(scene.cameras[1].name, "Plan");
    EXPECT_EQ(scene.cameras[1].halfHeight, 2);
    EXPECT_EQ(scene.cameras[1].aspect, 2);
    expectNear(V3d(0, 0, -1) * scene.cameras[1].cameraToWorld, V3d(0, 0, 1));
}

TEST(GltfPose, AmbientIsAGreyOrAColour) {
    const std::vector<std::pair<std::string, std::optional<V3d>>> cases = {
        {R"({"ambient": 0.25})", V3d(0.25)},     {R"({"ambient": [0, 0.5, 1]})", V3d(0, 0.5, 1)},
        {R"({"ambient": "dim"})", std::nullopt}, {R"({"ambient": [1, 2]})", std::nullopt},
        {R"({"ambient": -1})", std::nullopt},    {R"({})", std::nullopt},
    };
    for (const auto& [text, ambient] : cases) {
        GltfBuilder file;
        file.triangle();
        file.document["scenes"][0]["extras"]["tavora"] = Json::parse(text);
        const Scene scene = file.read();
        EXPECT_EQ(scene.ambient, ambient) << text;
        EXPECT_EQ(scene.warnings.size(), !ambient && text != "{}" ? 1U : 0U) << text;
    }
}

}  // namespace
}  // namespace tavora::studio
