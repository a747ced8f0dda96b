// Physical light units to the levels that a gradient wants.

#include "studio/scene/light_levels.h"

#include <cmath>
#include <gtest/gtest.h>

#include "studio/scene/color.h"
#include "studio/scene/default_view.h"

namespace tavora::studio {
namespace {

using Imath::V3d;

/// A scene of size 2 around the origin with these lights.
Scene sceneWith(const std::vector<Light>& lights) {
    Scene scene;
    scene.bounds = Imath::Box3d(V3d(-1), V3d(1));
    for (const Light& light : lights)
        scene.lights.push_back(std::make_unique<const Light>(light));
    return scene;
}

Light directional(float lux) {
    Light light;
    light.intensity = lux;
    return light;
}

Light point(float candela, V3d position) {
    Light light;
    light.kind = LightKind::Point;
    light.intensity = candela;
    light.position = position;
    return light;
}

/// Pointing down from above the origin.
Light spot(float candela, double height) {
    Light light = point(candela, {0, height, 0});
    light.kind = LightKind::Spot;
    light.direction = {0, -1, 0};
    light.innerCosine = std::cos(0.2);
    light.outerCosine = std::cos(0.5);
    return light;
}

/// What arrives from a light: how far, from where, how much.
struct Arrival {
    double distance;
    V3d direction;
    V3d color;
};

/// Lights settled, with their scene.
struct Lit {
    Scene scene;
    LightRig rig;

    explicit Lit(const std::vector<Light>& lights, const LightingOptions& options = {})
        : scene(sceneWith(lights)), rig(settleLights(scene, {}, options)) {}

    V3d level(std::size_t light) const { return rig.lights.at(light).color; }
    Arrival at(const V3d& place, std::size_t light = 0) const {
        Arrival arrival{};
        arrival.distance =
            arrivingLight(rig, rig.lights[light], place, arrival.direction, arrival.color);
        return arrival;
    }
};

TEST(LightLevels, TheBrightestAtTheCentreIsOneUnlessTheExposureIsFixed) {
    // 100 cd from 5 m are 4 lux.
    const std::vector<Light> lights = {directional(2), point(100, {0, 3, 4}), spot(36, 6)};
    for (const auto& [exposure, one] :
         {std::pair<std::optional<double>, double>{{}, 1}, {0.1, 0.4}, {0, 0}}) {
        LightingOptions options;
        options.exposure = exposure;
        const Lit lit(lights, options);
        ASSERT_EQ(lit.rig.lights.size(), 3U);
        EXPECT_NEAR(lit.level(0).x, one / 2, 1e-12);
        EXPECT_NEAR(lit.level(1).x, one, 1e-12);
        EXPECT_NEAR(lit.level(2).x, one / 4, 1e-12);
        EXPECT_EQ(lit.rig.ambient, V3d(0));
        EXPECT_TRUE(lit.rig.own.empty());
    }
    Light orange = directional(3);
    orange.color = {2, 0.5F, 0};  // brightest channel counts: 6 lux
    const V3d hue = Lit({orange, directional(12)}).level(0);
    EXPECT_NEAR((hue - V3d(0.5, toEncoded(0.25) * 0.5, 0)).length(), 0, 1e-12);
    // In the middle of the scene no nearer than a twentieth of its size, which is sqrt(12).
    const Lit middle({point(3, V3d(0)), directional(100)});
    EXPECT_NEAR(middle.level(0).x, 1.0, 1e-12);
    EXPECT_NEAR(middle.level(1).x, 100 / (3 / (12 * 0.05 * 0.05)), 1e-12);
}

TEST(LightLevels, SizesThatAreChosenCountOverTheLightsOwn) {
    Light lamp = point(1, {0, 2, 0});
    lamp.name = "Lamp 1";
    lamp.radius = 0.5;
    Light other = lamp;
    other.name = "Other";
    Light sun = directional(1);
    sun.angle = 0.1;
    LightingOptions options;
    options.radii = {{"*", 1}, {"Lamp*", 0}};
    const Lit lit({lamp, other, sun}, options);
    EXPECT_TRUE(lit.rig.lights[0].points.empty());
    const std::vector<V3d>& ball = lit.rig.lights[1].points;
    double farthest = 0;
    for (const V3d& point : ball)
        farthest = std::max(farthest, (point - lamp.position).length());
    EXPECT_LE(farthest, 1);
    EXPECT_GT(farthest, 0.9);
    double widest = 0;
    for (const V3d& way : lit.rig.lights[2].points)
        widest = std::max(widest, std::acos(-way.dot(sun.direction)));
    EXPECT_LE(widest, 0.05 + 1e-9);
    EXPECT_GT(widest, 0.045);
}

TEST(LightLevels, OddIntensitiesGiveNumbers) {
    Light black = directional(5);
    black.color = {0, 0, 0};
    for (float wild : {0.0F, -3.0F, 1e-45F, 3e38F}) {
        const Lit lit({directional(wild), black});
        EXPECT_EQ(lit.level(0).x, wild > 0 ? 1 : 0) << wild;
        EXPECT_EQ(lit.level(1), V3d(0));
    }
    Scene empty = sceneWith({point(1, V3d(0))});
    empty.bounds.makeEmpty();
    EXPECT_EQ(settleLights(empty, {}, {}).lights[0].color.x, 1);
}

TEST(LightLevels, EvenLightHasConesButNeitherRangeNorFalloff) {
    Light near = point(1, {0, 4, 0});
    near.range = 0.5F;
    const Lit lit({near, spot(1, 4)});
    const Arrival far = lit.at({0, -100, 0});
    EXPECT_DOUBLE_EQ(far.distance, 104);
    EXPECT_EQ(far.direction, V3d(0, -1, 0));
    EXPECT_EQ(far.color.x, 1);
    EXPECT_EQ(lit.at({0, 0, 0}, 1).color.x, 1);
    EXPECT_LT(lit.at({4, 0, 0}, 1).distance, 0);  // 45 degrees off the axis
    // In between: by the square of where the cosine stands between the cones.
    const double angle = 0.35;
    const double share = (std::cos(angle) - std::cos(0.5F)) / (std::cos(0.2F) - std::cos(0.5F));
    EXPECT_NEAR(lit.at({4 * std::tan(angle), 0, 0}, 1).color.x, share * share, 1e-6);
}

TEST(LightLevels, FalloffIsRelativeToTheCentreAndEndsAtTheRange) {
    Light lamp = point(50, {0, 4, 0});
    lamp.range = 8;
    Light sun = directional(1);
    sun.direction = {0, -1, 0};
    LightingOptions options;
    options.falloff = true;
    const Lit lit({lamp}, options);
    const auto window = [](double d) { return 1 - std::pow(d / 8, 4); };
    EXPECT_NEAR(lit.at({0, 0, 0}).color.x, window(4), 1e-12);
    EXPECT_NEAR(lit.at({0, 2, 0}).color.x, 4 * window(2), 1e-12);
    EXPECT_NEAR(lit.at({0, -2, 0}).color.x, window(6) * 16 / 36, 1e-12);
    EXPECT_LT(lit.at({0, -4, 0}).distance, 0);
    const Arrival inside = lit.at({0, 4, 0});
    EXPECT_EQ(inside.distance, 0);
    EXPECT_TRUE(std::isfinite(inside.color.x) && std::isfinite(inside.direction.length()));
    // The sun shines everywhere the same.
    const Arrival there = Lit({sun}, options).at({5, 900, 2});
    EXPECT_EQ(there.distance, HUGE_VAL);
    EXPECT_EQ(there.direction, V3d(0, -1, 0));
    EXPECT_EQ(there.color, V3d(1));
}

TEST(LightLevels, ASceneWithoutLightsGetsAKeyAndAmbientWhereNobodyChoseOne) {
    Scene scene = sceneWith({});
    const LightRig rig = settleLights(scene, {}, {});  // looks along -z, right is +x
    ASSERT_EQ(rig.lights.size(), 1U);
    const Light& key = *rig.lights[0].light;
    EXPECT_EQ(key.name, "Key");
    EXPECT_EQ(rig.lights[0].color, V3d(1));
    EXPECT_EQ(rig.ambient, V3d(kDefaultAmbient));
    EXPECT_GT(key.direction.x, 0.3);   // from the left,
    EXPECT_LT(key.direction.y, -0.3);  // from above,
    EXPECT_LT(key.direction.z, -0.3);  // from behind the camera
    EXPECT_NEAR(key.direction.length(), 1, 1e-12);
    scene.ambient = V3d(0.1, 0.2, 0.3);
    EXPECT_EQ(settleLights(scene, {}, {}).ambient, V3d(0.1, 0.2, 0.3));
    EXPECT_EQ(settleLights(scene, {}, {.ambient = V3d(0.7), .exposure = {}}).ambient, V3d(0.7));
}

}  // namespace
}  // namespace tavora::studio
