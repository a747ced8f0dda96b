// Scenes that play: values between keys, what they move, and what is wrong with them.

#include <cmath>
#include <fmt/format.h>
#include <functional>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "studio/scene/animation/curve.h"
#include "studio/util/color.h"
#include "tests/scene/gltf_builder.h"

namespace tavora::studio {
namespace {

using Imath::V3d, Imath::V3f;
using testing::ElementsAre, testing::HasSubstr;

std::vector<double> at(const Curve& curve, double seconds) {
    std::vector<double> values(curve.width);
    curve.sample(seconds, values);
    return values;
}

TEST(Curves, FollowClosedFormsBetweenKeysAndKeepTheirEnds) {
    const Curve line{Interpolation::Linear, false, 2, {1, 2, 4}, {0, 1, 2, 1, -2, 5}};
    Curve steps = line;
    steps.interpolation = Interpolation::Step;
    // x^3 - 2 x with its slopes, at keys of uneven distance: a cubic is its own spline.
    const auto cubic = [](double x) { return x * x * x - 2 * x; };
    Curve spline{Interpolation::CubicSpline, false, 1, {}, {}};
    for (const float x : {-1.0F, 0.5F, 1.0F, 3.0F}) {
        const float slope = 3 * x * x - 2;
        spline.times.push_back(x);
        spline.values.insert(spline.values.end(), {slope, static_cast<float>(cubic(x)), slope});
    }
    for (double x = -2; x < 5; x += 0.01) {
        const double held = std::clamp(x, 1.0, 4.0);
        const double first = held < 2 ? 2 * (held - 1) : 2 - 2 * (held - 2);
        EXPECT_NEAR(at(line, x)[0], first, 1e-5) << x;
        EXPECT_NEAR(at(line, x)[1], held < 2 ? 1 : 1 + 2 * (held - 2), 1e-5) << x;
        const auto key = static_cast<float>(x);
        EXPECT_EQ(at(steps, x)[0], key < 2 ? 0 : key < 4 ? 2 : -2) << x;
        EXPECT_NEAR(at(spline, x)[0], cubic(std::clamp(x, -1.0, 3.0)), 1e-5) << x;
    }
    const Curve onFrames{Interpolation::Step, false, 1, {0, 7 / 24.0F, 8 / 24.0F}, {1, 2, 3}};
    EXPECT_EQ(at(onFrames, 7 / 24.0)[0], 2) << "a frame's time is that of a key on it";
}

TEST(Curves, RotationsTurnEvenlyTheShorterWayAndKeepTheirLength) {
    const auto about = [](double radians) {
        return std::vector<float>{0, static_cast<float>(std::sin(radians / 2)), 0,
                                  static_cast<float>(std::cos(radians / 2))};
    };
    for (const double angle : {0.001, 1.0, 3.1, 5.0}) {
        Curve turn{Interpolation::Linear, true, 4, {0, 1}, about(0)};
        for (const float value : about(angle))
            turn.values.push_back(value);
        const double shorter = angle > M_PI ? angle - 2 * M_PI : angle;
        for (double t = 0; t <= 1; t += 0.125) {
            const auto q = at(turn, t);
            const double sign = q[3] < 0 ? -1 : 1;
            EXPECT_NEAR(q[1] * sign, std::sin(t * shorter / 2), 1e-5) << angle << " " << t;
            EXPECT_NEAR(q[3] * sign, std::cos(t * shorter / 2), 1e-5) << angle << " " << t;
        }
    }
    const Curve curve{
        Interpolation::CubicSpline, true, 4, {0, 1}, {0, 0, 0, 0, 0, 0, 0, 1, 1, 0, 0, 0,  //
                                                      1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 0, 0}};
    for (double t = 0; t <= 1; t += 0.1) {
        const auto q = at(curve, t);
        EXPECT_NEAR(q[0] * q[0] + q[1] * q[1] + q[2] * q[2] + q[3] * q[3], 1, 1e-12);
    }
}

/// A file with one animation whose curves go from 0 to 1 second.
struct Animated : GltfBuilder {
    Json channels = Json::array(), samplers = Json::array();
    std::vector<std::string> warnings, notes;

    void move(Json target, const std::vector<float>& values, const char* type,
              const char* interpolation = "LINEAR", const std::vector<float>& times = {0, 1}) {
        channels.push_back({{"sampler", samplers.size()}, {"target", std::move(target)}});
        const int input = accessor(times, "SCALAR");
        samplers.push_back({{"input", input},
                            {"output", accessor(values, type)},
                            {"interpolation", interpolation}});
    }
    void point(const std::string& pointer, const std::vector<float>& values, const char* type,
               const char* interpolation = "LINEAR") {
        move({{"path", "pointer"},
              {"extensions", {{"KHR_animation_pointer", {{"pointer", pointer}}}}}},
             values, type, interpolation);
    }
    /// Calls `look` with the scene at each time.
    void play(const std::vector<double>& times,
              const std::function<void(const Scene&, double)>& look) {
        document["animations"] = Json::array({{{"channels", channels}, {"samplers", samplers}}});
        document["extensionsRequired"] = {"KHR_animation_pointer", "KHR_node_visibility"};
        const TemporaryFolder folder;
        GltfScene scene(write(folder));
        scene.play(scene.compatibleAnimations());
        warnings = scene.scene().warnings;
        notes = scene.scene().notes;
        for (const double time : times) {
            scene.pose(time);
            look(scene.scene(), time);
        }
    }
};

TEST(Animations, MoveNodesMorphsAndSkinsAndLeaveTheRestAsItIs) {
    Animated file;
    file.triangle({{"scale", {2, 2, 2}}});
    file.triangle();
    file.primitive(1)["targets"] =
        Json::array({{{"POSITION", file.accessor<float>({0, 0, 1, 0, 0, 1, 0, 0, 1}, "VEC3")}}});
    file.triangle({{"skin", 0}});
    file.primitive(2)["attributes"]["JOINTS_0"] =
        file.accessor<std::uint8_t>({0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}, "VEC4");
    file.primitive(2)["attributes"]["WEIGHTS_0"] =
        file.accessor<float>({1, 0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0}, "VEC4");
    file.root({{"name", "joint"}});
    file.document["skins"] = R"([{"joints": [3]}])"_j;
    file.triangle({{"name", "still"}});
    file.move({{"node", 0}, {"path", "translation"}}, {0, 0, 0, 4, 0, 0}, "VEC3");
    file.move({{"node", 1}, {"path", "weights"}}, {0, 2}, "SCALAR");
    file.move({{"node", 3}, {"path", "translation"}}, {0, 0, 0, 0, 8, 0}, "VEC3");
    const Mesh* deformed = nullptr;
    std::vector<std::uint64_t> revisions;
    file.play({0.5, 0.25, 0.25, 0.5}, [&](const Scene& scene, double t) {
        ASSERT_EQ(scene.objects.size(), 4U);
        EXPECT_EQ(scene.objects[0]->objectToWorld.translation(), V3d(4 * t, 0, 0));
        EXPECT_EQ(scene.objects[0]->objectToWorld[0][0], 2) << "the scale stays";
        const auto meshOf = [&](std::size_t i) { return scene.objects[i]->parts[0].mesh; };
        EXPECT_EQ(meshOf(1)->positions[1], V3f(1, 0, static_cast<float>(2 * t)));
        EXPECT_EQ(meshOf(2)->positions[1], V3f(1, static_cast<float>(8 * t), 0));
        EXPECT_DOUBLE_EQ(scene.bounds.max.y, 8 * t + 1);
        EXPECT_EQ(meshOf(3)->revision, 0U) << "shared as stored";
        EXPECT_TRUE(deformed == nullptr || deformed == meshOf(2).get()) << "in place";
        deformed = meshOf(2).get();
        revisions.push_back(deformed->revision);
    });
    EXPECT_TRUE(revisions[0] < revisions[1] && revisions[1] == revisions[2] &&
                revisions[2] < revisions[3])
        << "anew only where it moved";
}

TEST(Animations, ReachWhateverIsReadByPointers) {
    Animated file;
    file.triangle();
    file.primitive()["material"] = 0;
    file.document["materials"] = R"([{"pbrMetallicRoughness": {
        "baseColorTexture": {"index": 0}}, "emissiveTexture": {"index": 0}}])"_j;
    file.document["textures"] = R"([{"source": 0}])"_j;
    file.document["images"] = Json::array({{{"uri", kRedPng}}});
    file.document["cameras"] =
        R"([{"type": "perspective", "perspective": {"yfov": 1, "znear": 0.1}}])"_j;
    file.document["extensions"]["KHR_lights_punctual"]["lights"] =
        R"([{"type": "spot", "intensity": 9}])"_j;
    file.root({{"camera", 0}});
    file.root({{"extensions", {{"KHR_lights_punctual", {{"light", 0}}}}}});
    file.root({{"extensions", {{"KHR_lights_punctual", {{"light", 0}}}}}});
    const std::string light = "/extensions/KHR_lights_punctual/lights/0/";
    const std::string base = "/materials/0/pbrMetallicRoughness/";
    file.point("/cameras/0/perspective/yfov", {0.5F, 1}, "SCALAR");
    file.point(light + "color", {0, 0, 0, 1, 0.5F, 0}, "VEC3");
    file.point(light + "intensity", {1, 3}, "SCALAR");
    file.point(light + "spot/outerConeAngle", {0.5F, 1}, "SCALAR");
    file.document["scenes"][0]["nodes"] = {1, 2, 3, 4};
    file.add("nodes", {{"children", {0}}});
    file.point("/nodes/4/extensions/KHR_node_visibility/visible", {1, 0}, "SCALAR", "STEP");
    file.point("/nodes/3/extensions/KHR_node_visibility/visible", {0, 1}, "SCALAR", "STEP");
    file.point(base + "baseColorFactor", {0, 0, 0, 0, 1, 1, 1, 1}, "VEC4");
    file.point(base + "baseColorTexture/extensions/KHR_texture_transform/offset", {0, 0, 1, 2},
               "VEC2");
    file.point("/materials/0/emissiveFactor", {0, 0, 0, 1, 1, 1}, "VEC3");
    file.point("/materials/0/extensions/KHR_materials_sheen/sheenRoughnessFactor", {0, 1},
               "SCALAR");
    file.point("/nodes/17/scale", {0, 0, 0, 1, 1, 1}, "VEC3");
    file.play({0.5, 1, 0}, [&](const Scene& scene, double t) {
        const auto f = static_cast<float>(t);
        EXPECT_NEAR(scene.cameras.at(0).verticalFov, 0.5 + t / 2, 1e-6);
        ASSERT_EQ(scene.lights.size(), t < 1 ? 1U : 2U) << "a hidden light is dark";
        EXPECT_EQ(scene.lights[0]->color, V3f(f, f / 2, 0));
        EXPECT_FLOAT_EQ(scene.lights[0]->intensity, 1 + 2 * f);
        EXPECT_NEAR(scene.lights[0]->outerCosine, std::cos(0.5 + t / 2), 1e-6);
        EXPECT_EQ(scene.objects.size(), t < 1 ? 1U : 0U) << "hidden with its parent";
        EXPECT_EQ(scene.surfaces[0].baseColor, Imath::V4f(f));
        EXPECT_EQ(scene.surfaces[0].emissive, V3f(f));
        EXPECT_TRUE(scene.surfaces[0].emissiveTexture) << "dark at rest as it may be";
        EXPECT_EQ(scene.surfaces[0].baseColorTexture->offset, Imath::V2f(f, 2 * f));
    });
    EXPECT_THAT(file.warnings, ElementsAre(HasSubstr("moves /nodes/17/scale, which the file has "
                                                     "not, and is left out")));
    EXPECT_THAT(
        file.notes,
        ElementsAre(HasSubstr("KHR_materials_sheen/sheenRoughnessFa.., which is not drawn")));
}

TEST(Animations, PlayTogetherWhereTheyMoveDifferentThingsAndEndAtRest) {
    Animated file;
    file.triangle({{"translation", {5, 0, 0}}});
    file.triangle({{"matrix", {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 7, 0, 0, 1}}});
    for (const int node : {0, 1})
        file.move({{"node", node}, {"path", "translation"}}, {1, 2, 3, 1, 2, 3}, "VEC3");
    file.move({{"path", "translation"}}, {1, 2, 3, 1, 2, 3}, "VEC3");
    const Json one = {{"channels", file.channels}, {"samplers", file.samplers}};
    Json other = one;
    other["channels"][0]["target"] = {{"node", 0}, {"path", "scale"}};
    other["channels"].erase(1);
    file.document["animations"] = Json::array({one, one, other});
    const TemporaryFolder folder;
    GltfScene scene(file.write(folder));
    EXPECT_THAT(scene.compatibleAnimations(), ElementsAre(0U, 2U));
    scene.play(std::vector<std::size_t>{0, 2});
    scene.pose(0.5);
    EXPECT_EQ(scene.scene().objects[0]->objectToWorld.translation(), V3d(1, 2, 3));
    EXPECT_EQ(scene.scene().objects[0]->objectToWorld[2][2], 3);
    EXPECT_EQ(scene.scene().objects[1]->objectToWorld.translation(), V3d(7, 0, 0));
    EXPECT_THAT(scene.scene().warnings,
                ElementsAre(HasSubstr("channels[1] moves node 1, which is placed by a matrix"),
                            HasSubstr("channels[2] names nothing that it moves"),
                            HasSubstr("animations[2].channels[1] names nothing")));
    scene.play({});
    scene.pose(0.5);
    EXPECT_EQ(scene.scene().objects[0]->objectToWorld.translation(), V3d(5, 0, 0)) << "at rest";
    scene.play(std::vector<std::size_t>{0});
    scene.pose(0.5);
    scene.close();
    scene.play(std::vector<std::size_t>{0});
    scene.pose(0);
    EXPECT_FALSE(scene.plays());
    EXPECT_EQ(scene.scene().objects[0]->objectToWorld.translation(), V3d(1, 2, 3)) << "as it was";
}

}  // namespace
}  // namespace tavora::studio
