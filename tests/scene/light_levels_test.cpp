// Physical light units to the levels that a gradient wants.

#include "studio/scene/lighting/light_levels.h"

#include <cmath>
#include <gtest/gtest.h>

#include "studio/scene/framing/default_view.h"
#include "studio/util/color.h"
#include "tests/scene/made_scene.h"

namespace tavora::studio {
namespace {

using Imath::V3d;

using Furnish = void (*)(Scene&);

/// A box of 2 metres around the origin.
void figure(Scene& scene) {
    addBox(scene, Imath::V3f(-1), Imath::V3f(1));
}

/// Something of that size that no light can reach.
void nothing(Scene& scene) {
    scene.bounds = Imath::Box3d(V3d(-1), V3d(1));
}

Scene sceneWith(const std::vector<Light>& lights, Furnish furnish = nothing) {
    Scene scene;
    furnish(scene);
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

    explicit Lit(const std::vector<Light>& lights, const LightingOptions& options = {},
                 Furnish furnish = nothing)
        : scene(sceneWith(lights, furnish)), rig(settleLights(scene, {}, options)) {}

    V3d level(std::size_t light) const { return rig.lights.at(light).color; }
    Arrival at(const V3d& place, std::size_t light = 0) const {
        Arrival arrival{};
        arrival.distance =
            arrivingLight(rig, rig.lights[light], place, arrival.direction, arrival.color);
        return arrival;
    }
};

TEST(LightLevels, SunsCountByTheBrightestAndExposureByItself) {
    Light orange = directional(3);
    orange.color = {2, 0.5F, 0};  // brightest channel counts: 6 lux
    for (const auto& [exposure, one] :
         {std::pair<std::optional<double>, double>{{}, 1}, {0.1, 1.2}, {0, 0}}) {
        const Lit lit({orange, directional(12)}, {.ambient = {}, .exposure = exposure});
        const V3d half = V3d(one / 2, toEncoded(0.25) * one / 2, 0);
        EXPECT_NEAR((lit.level(0) - half).length(), 0, 1e-12);
        EXPECT_NEAR(lit.level(1).x, one, 1e-12);
        EXPECT_TRUE(lit.rig.own.empty());
    }
}

TEST(LightLevels, NoLampShadesTheSunsSide) {
    for (const V3d& place : {V3d(0, 0, -3), V3d(0.3, 0.2, -1.001), V3d(0), V3d(0, 0, -30)}) {
        Lit lit({directional(3), point(30, place), point(6, {0, 30, 0})}, {}, figure);
        EXPECT_EQ(lit.level(0), V3d(1)) << place;
        EXPECT_GT(lit.level(1).x, 0) << place;
        EXPECT_LE(lit.level(1).x, 1) << place;
    }
    // From 30 m a lamp brings its candela / 29^2 to the side that it faces.
    const Lit far({directional(3), point(1500, {0, 0, -30})}, {}, figure);
    EXPECT_NEAR(far.level(1).x, 1500.0 / (29 * 29) / 3, 0.01);
}

TEST(LightLevels, LampsCountWhereTheyMeetSurfaces) {
    // A room of 10 x 3 x 10 metres: the small lamp at its wall is the weaker one.
    const auto room = [](Scene& scene) {
        addBox(scene, {-5, 0, -5}, {5, 3, 5}).doubleSided = true;
    };
    const Lit walls({point(100, {0, 2, 0}), point(10, {4.98, 1, 0})}, {}, room);
    EXPECT_EQ(walls.level(0).x, 1);
    EXPECT_LT(walls.level(1).x, 0.2);
    // Far-off ground around a figure does not make its lamp a weak one.
    const auto ground = [](Scene& scene) {
        figure(scene);
        addTriangles(scene, {{-500, -1, -500}, {0, -1, 500}, {500, -1, -500}}, {{0, 1, 2}});
    };
    EXPECT_GT(Lit({directional(3), point(30, {0, 0, -3})}, {}, ground).level(1).x, 0.1);
    // A lamp in a closed figure lights nothing, nor does one before what is unlit.
    const auto backdrop = [](Scene& scene) {
        figure(scene);
        addBox(scene, {50, -1, -1}, {60, 1, 1}).unlit = true;
    };
    const Lit hidden({point(1e6, V3d(0)), point(1, {4, 0, 0}), point(1, {49, 0, 0})}, {}, backdrop);
    EXPECT_EQ(hidden.level(0).x, 1);
    EXPECT_EQ(hidden.level(1).x, 1);
    EXPECT_LT(hidden.level(2).x, 0.01);
    const auto bothSides = [](Scene& scene) {
        addBox(scene, Imath::V3f(-1), Imath::V3f(1)).doubleSided = true;
    };
    EXPECT_LT(Lit({point(1e6, V3d(0)), point(1, {4, 0, 0})}, {}, bothSides).level(1).x, 0.01);
    Light shortOne = point(1e6, {4, 0, 0});
    shortOne.range = 2.5F;
    EXPECT_EQ(Lit({shortOne, point(1, {4, 0, 0})}, {}, figure).level(1).x, 1);
    // Alone, a lamp is the brightest wherever it is and whatever it is.
    for (const double height : {1.01, 3.0, 1e4, 0.0})
        EXPECT_EQ(Lit({point(1e-3F, {0, height, 0})}, {}, figure).level(0).x, 1) << height;
}

TEST(LightLevels, ASpotIsFullWhereItsConeIsBrightestOnTheSurfaces) {
    // Beside the axis: most of the cone passes by the figure.
    Light aside = spot(10, 6);
    aside.position.x = 3;
    const Lit lit({aside}, {}, figure);
    const Arrival nearest = lit.at({1, -1, 0});  // to the axis, as it goes down
    EXPECT_GT(nearest.color.x, 0.9);
    EXPECT_LT(nearest.color.x, 2);
    LightingOptions falloff;
    falloff.falloff = true;
    EXPECT_NEAR(Lit({aside}, falloff, figure).at({1, -1, 0}).color.x, 1, 0.3);
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

TEST(LightLevels, FalloffIsPhysicalAndEndsAtTheRange) {
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

TEST(LightLevels, AmbientAndAKeyLightAreAddedWhereNobodyChoseThem) {
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
    Light black = point(5, V3d(0));
    black.color = {0, 0, 0};
    EXPECT_EQ(Lit({directional(1), black}).rig.ambient, V3d(0)) << "one sun stays as it is";
    EXPECT_EQ(Lit({directional(1), directional(1)}).rig.ambient, V3d(kFillAmbient));
    EXPECT_EQ(Lit({point(1, V3d(0))}).rig.ambient, V3d(kFillAmbient));
    scene.ambient = V3d(0.1, 0.2, 0.3);
    EXPECT_EQ(settleLights(scene, {}, {}).ambient, V3d(0.1, 0.2, 0.3));
    EXPECT_EQ(settleLights(scene, {}, {.ambient = V3d(0.7), .exposure = {}}).ambient, V3d(0.7));
}

}  // namespace
}  // namespace tavora::studio
