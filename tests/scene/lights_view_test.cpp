// The mapping of physical light units to the brightness that a gradient expects, and the camera
// of a file that has none.

#include <cmath>
#include <gtest/gtest.h>

#include "studio/scene/framing/default_view.h"
#include "studio/scene/lighting/light_sample.h"
#include "studio/scene/lighting/light_set.h"
#include "studio/util/color.h"

namespace tavora::studio {
namespace {

using Imath::V3d, Imath::V3f;

using Triangles = std::vector<std::array<std::uint32_t, 3>>;

/// Adds an object of these triangles, with a new surface.
Surface& addTriangles(Scene& scene, const std::vector<V3f>& positions, const Triangles& triangles,
                      double scaleX = 1) {
    auto mesh = std::make_shared<Mesh>();
    mesh->positions = positions;
    mesh->triangles = triangles;
    for (const V3f& position : positions)
        scene.bounds.extendBy(V3d(position));
    auto object = std::make_unique<Object>();
    object->objectToWorld.setScale(V3d(scaleX, 1, 1));
    object->mirrored = scaleX < 0;
    object->parts.push_back({mesh, static_cast<int>(scene.surfaces.size()), 0});
    scene.objects.push_back(std::move(object));
    return scene.surfaces.emplace_back();
}

/// A closed box; its faces look outwards.
Surface& addBox(Scene& scene, const V3f& low, const V3f& high, double scaleX = 1) {
    std::vector<V3f> corners;
    for (const float z : {low.z, high.z}) {
        for (const float y : {low.y, high.y})
            corners.insert(corners.end(), {{low.x, y, z}, {high.x, y, z}});
    }
    Triangles triangles;
    for (const auto& [a, b, c, d] : std::vector<std::array<std::uint32_t, 4>>{
             {0, 2, 3, 1}, {4, 5, 7, 6}, {0, 1, 5, 4}, {2, 6, 7, 3}, {0, 4, 6, 2}, {1, 3, 7, 5}})
        triangles.insert(triangles.end(), {{a, b, c}, {a, c, d}});
    return addTriangles(scene, corners, triangles, scaleX);
}

void addFigure(Scene& scene) {
    addBox(scene, V3f(-1), V3f(1));
}

Light pointLight(float candela, V3d position, LightKind kind = LightKind::Point) {
    Light light;
    light.kind = kind;
    light.intensity = candela;
    light.position = position;
    light.direction = {0, -1, 0};
    light.innerCosine = std::cos(0.2);
    light.outerCosine = std::cos(0.5);
    return light;
}

Light directionalLight(float lux) {
    return pointLight(lux, V3d(0), LightKind::Directional);
}

/// The resolved lights of a scene with bounds of 2 metres, which has no triangles unless `furnish`
/// adds some.
struct ResolvedScene {
    Scene scene;
    LightSet lightSet;

    explicit ResolvedScene(const std::vector<Light>& lights, const LightingOptions& options = {},
                           void (*furnish)(Scene&) = nullptr) {
        scene.bounds = Imath::Box3d(V3d(-1), V3d(1));
        if (furnish != nullptr) furnish(scene);
        for (const Light& light : lights) {
            Light named = light;
            if (named.name.empty()) named.name = std::to_string(scene.lights.size());
            scene.lights.push_back(std::make_unique<const Light>(named));
        }
        lightSet = resolveLights(scene, {}, options);
    }

    double brightness(std::size_t light) const { return lightSet.lights.at(light).color.x; }
    std::optional<LightSample> at(const V3d& position, std::size_t light = 0) const {
        return sampleLight(lightSet, lightSet.lights[light], position);
    }
};

TEST(LightLevels, SunsCountByTheBrightestAndExposureByItself) {
    Light lime = directionalLight(3), black = directionalLight(5);
    lime.color = {0.5F, 2, 0};  // brightest channel counts: 6 lux
    black.color = {0, 0, 0};
    for (const auto& [exposure, one] :
         {std::pair<std::optional<double>, double>{{}, 1}, {0.1, 1.2}, {0, 0}}) {
        const ResolvedScene resolved({lime, directionalLight(12)},
                                     {.ambient = {}, .exposure = exposure});
        const V3d half = V3d(toEncoded(0.25), 1, 0) * (one / 2);
        EXPECT_NEAR((resolved.lightSet.lights[0].color - half).length(), 0, 1e-12);
        EXPECT_NEAR(resolved.brightness(1), one, 1e-12);
    }
    for (float wild : {0.0F, -3.0F, 1e-45F, 3e38F})
        EXPECT_EQ(ResolvedScene({directionalLight(wild), black}).brightness(0), wild > 0 ? 1 : 0)
            << wild;
}

TEST(LightLevels, LampsCountWhereTheyMeetSurfacesAndShadeNoSun) {
    for (const V3d& position : {V3d(0, 0, -3), V3d(0.3, 0.2, -1.001), V3d(0), V3d(0, 0, -30)}) {
        const ResolvedScene resolved(
            {directionalLight(3), pointLight(30, position), pointLight(6, {0, 30, 0})}, {},
            addFigure);
        EXPECT_TRUE(resolved.brightness(0) == 1 && resolved.brightness(1) > 0 &&
                    resolved.brightness(1) <= 1)
            << position;
    }
    // From 30 m a lamp brings its candela / 29^2 to the side that it faces.
    const ResolvedScene far({directionalLight(3), pointLight(1500, {0, 0, -30})}, {}, addFigure);
    EXPECT_NEAR(far.brightness(1), 1500.0 / (29 * 29) / 3, 0.01);
    // A room of 10 x 3 x 10 metres: the small lamp at its wall is the weaker one.
    const auto room = [](Scene& scene) {
        addBox(scene, {-5, 0, -5}, {5, 3, 5}).doubleSided = true;
    };
    const ResolvedScene walls({pointLight(100, {0, 2, 0}), pointLight(10, {4.98, 1, 0})}, {}, room);
    EXPECT_TRUE(walls.brightness(0) == 1 && walls.brightness(1) < 0.2);
    // Far-off ground around a figure does not make its lamp a weak one.
    const auto ground = [](Scene& scene) {
        addFigure(scene);
        addTriangles(scene, {{-500, -1, -500}, {0, -1, 500}, {500, -1, -500}}, {{0, 1, 2}});
    };
    EXPECT_GT(
        ResolvedScene({directionalLight(3), pointLight(30, {0, 0, -3})}, {}, ground).brightness(1),
        0.1);
    // A lamp in a closed figure lights nothing, nor does one before what is unlit or clear.
    const auto backdrop = [](Scene& scene) {
        addBox(scene, V3f(-1), V3f(1), -1);
        addBox(scene, {50, -1, -1}, {60, 1, 1}).unlit = true;
        Surface& glass = addBox(scene, {-60, -1, -1}, {-50, 1, 1});
        glass.alphaMode = AlphaMode::Blend;
        glass.baseColor.w = 0;
    };
    const Light inside = pointLight(1e6, V3d(0)), outside = pointLight(1, {4, 0, 0});
    const ResolvedScene dark(
        {inside, outside, pointLight(1, {49, 0, 0}), pointLight(1, {-49, 0, 0})}, {}, backdrop);
    EXPECT_TRUE(dark.brightness(0) == 1 && dark.brightness(1) == 1 && dark.brightness(2) < 0.01 &&
                dark.brightness(3) < 0.01);
    const auto bothSides = [](Scene& scene) { addBox(scene, V3f(-1), V3f(1)).doubleSided = true; };
    EXPECT_LT(ResolvedScene({inside, outside}, {}, bothSides).brightness(1), 0.01);
    Light shortOne = pointLight(1e6, {4, 0, 0});
    shortOne.range = 2.5F;
    EXPECT_EQ(ResolvedScene({shortOne, outside}, {}, addFigure).brightness(1), 1);
    // Alone, a lamp is the brightest wherever it is and whatever it is.
    for (const double height : {1.01, 3.0, 1e4, 0.0})
        EXPECT_EQ(ResolvedScene({pointLight(1e-3F, {0, height, 0})}, {}, addFigure).brightness(0),
                  1)
            << height;
    // A spot is full where its cone is brightest: here most of the cone passes by the figure.
    EXPECT_NEAR(ResolvedScene({pointLight(10, {3, 6, 0}, LightKind::Spot)}, {}, addFigure)
                    .at({1, -1, 0})
                    ->color.x,
                1.45, 0.55);
}

TEST(LightLevels, SizesAndShadowsThatAreChosenCountOverTheLightsOwn) {
    Light soft = pointLight(1, {0, 2, 0}), wide = directionalLight(1);
    soft.name = "Lamp 1";
    soft.radius = 0.5;
    Light other = soft;
    other.name = "Other";
    other.castsShadow = false;
    wide.angle = 0.1;
    LightingOptions options;
    options.radii = {{"*", 1}, {"Lamp*", 0}};
    options.withoutShadows = {"Lamp*"};
    const ResolvedScene resolved({soft, other, wide}, options);
    const auto& lights = resolved.lightSet.lights;
    EXPECT_TRUE(!lights[0].castsShadow && !lights[1].castsShadow && lights[2].castsShadow &&
                lights[0].points.empty());
    double farthest = 0, widest = 0;
    for (const V3d& at : lights[1].points)
        farthest = std::max(farthest, (at - soft.position).length());
    for (const V3d& direction : lights[2].points)
        widest = std::max(widest, std::acos(-direction.dot(wide.direction)));
    EXPECT_TRUE(farthest <= 1 && farthest > 0.9) << farthest;
    EXPECT_TRUE(widest <= 0.05 + 1e-9 && widest > 0.045) << widest;
}

TEST(LightLevels, EvenLightHasConesFalloffIsPhysicalAndEndsAtTheRange) {
    Light near = pointLight(1, {0, 4, 0}), bright = pointLight(50, {0, 4, 0});
    near.range = 0.5F;
    const ResolvedScene even({near, pointLight(1, {0, 4, 0}, LightKind::Spot)});
    const LightSample far = even.at({0, -100, 0}).value();
    EXPECT_TRUE(far.distance == 104 && far.direction == V3d(0, -1, 0) && far.color.x == 1);
    EXPECT_EQ(even.at({0, 0, 0}, 1)->color.x, 1);
    EXPECT_FALSE(even.at({4, 0, 0}, 1));  // 45 degrees off the axis
    // In between: by the square of where the cosine stands between the cones.
    const double fraction = (std::cos(0.35) - std::cos(0.5F)) / (std::cos(0.2F) - std::cos(0.5F));
    EXPECT_NEAR(even.at({4 * std::tan(0.35), 0, 0}, 1)->color.x, fraction * fraction, 1e-6);

    bright.range = 8;
    LightingOptions options;
    options.falloff = true;
    const ResolvedScene resolved({bright}, options);
    for (const double d : {4, 2, 6})
        EXPECT_NEAR(resolved.at({0, 4 - d, 0})->color.x, (1 - std::pow(d / 8, 4)) * 16 / (d * d),
                    1e-12);
    EXPECT_FALSE(resolved.at({0, -4, 0}));
    const LightSample inside = resolved.at({0, 4, 0}).value();
    EXPECT_TRUE(inside.distance == 0 && std::isfinite(inside.color.x + inside.direction.length()));
    const LightSample there = ResolvedScene({directionalLight(1)}, options).at({5, 900, 2}).value();
    EXPECT_TRUE(there.distance == HUGE_VAL && there.direction == V3d(0, -1, 0) &&
                there.color == V3d(1));
}

TEST(LightLevels, AmbientAndAKeyLightAreAddedWhereNobodyChoseThem) {
    ResolvedScene none({});  // looks along -z, right is +x
    const Light& key = *none.lightSet.lights.at(0).light;
    EXPECT_TRUE(key.name == "Key" && none.brightness(0) == 1 &&
                none.lightSet.ambient == V3d(kDefaultAmbient));
    // From the left, from above and from behind the camera.
    EXPECT_TRUE(key.direction.x > 0.3 && key.direction.y < -0.3 && key.direction.z < -0.3);
    EXPECT_NEAR(key.direction.length(), 1, 1e-12);
    EXPECT_EQ(ResolvedScene({directionalLight(1), pointLight(0, V3d(0))}).lightSet.ambient, V3d(0))
        << "one sun";
    EXPECT_EQ(ResolvedScene({directionalLight(1), directionalLight(1)}).lightSet.ambient,
              V3d(kFillAmbient));
    EXPECT_EQ(ResolvedScene({pointLight(1, V3d(0))}).lightSet.ambient, V3d(kFillAmbient));
    none.scene.ambient = V3d(0.1);
    EXPECT_EQ(resolveLights(none.scene, {}, {}).ambient, V3d(0.1));
    EXPECT_EQ(ResolvedScene({}, {.ambient = V3d(0.7), .exposure = {}}).lightSet.ambient, V3d(0.7));
}

/// Expects the bounding box of the projected triangles in the middle of the picture. Returns the
/// larger of its half sides and its width, in halves of the picture.
std::pair<double, double> framed(const std::vector<const Scene*>& scenes, double aspect) {
    const Camera camera = framingCameraOfFilm(scenes, aspect);
    EXPECT_DOUBLE_EQ(camera.verticalFov, aspect < 8 ? 0.6 : 0.6 / 4.5);
    const Imath::M44d toCamera = camera.cameraToWorld.inverse();
    Imath::Box2d box;
    for (const Scene* scene : scenes) {
        for (const auto& object : scene->objects) {
            for (const V3f& position : object->parts[0].mesh->positions) {
                const V3d p = V3d(position) * toCamera;
                EXPECT_LT(p.z, 0) << "before the camera";
                box.extendBy(Imath::V2d(p.x / aspect, p.y) /
                             (-p.z * std::tan(camera.verticalFov / 2)));
            }
        }
    }
    EXPECT_NEAR(box.center().length(), 0, 1e-6) << aspect;
    return {std::max(box.max.x, box.max.y), box.size().x};
}

TEST(DefaultView, TheProjectedBoundsAreCentredWithTheMarginInAnyPicture) {
    Scene box, deep, ground;
    addBox(box, {10, -3, 1000}, {12, 5, 1001});
    addBox(deep, {0, 0, 0}, {0.1F, 0.1F, 0.1F});  // near: decides one side, far another
    addBox(deep, {-40, -2, -300}, {-39, 30, -299});
    addBox(deep, {5, 0.5F, -9}, {6, 1, 3});
    addTriangles(ground, {{-500, 0, -500}, {500, 0, -500}, {0, 0, 500}}, {{0, 2, 1}});
    for (const double aspect : {0.1, 1.0, 16.0 / 9, 8.0}) {
        for (const auto& scenes : std::vector<std::vector<const Scene*>>{
                 {&box}, {&deep}, {&ground}, {&box, &deep, &ground}})
            EXPECT_NEAR(framed(scenes, aspect).first, 1 - 2 * kFramingMargin, 1e-6) << aspect;
    }
}

TEST(DefaultView, IsAThreeQuarterViewThatShowsFlatScenesFromTheirBroadSide) {
    Scene box;
    addBox(box, V3f(-0.5), V3f(0.5));
    const auto m = framingCamera(box, 1).cameraToWorld;
    const double degree = M_PI / 180;
    EXPECT_NEAR(std::atan2(m[2][0], m[2][2]), 30 * degree, 1e-6);
    EXPECT_NEAR(std::asin(m[2][1]), 20 * degree, 1e-6);
    EXPECT_EQ(framingCamera(Scene{}, 1).cameraToWorld, m);
    for (int turn = 0; turn < 180; turn += 5) {
        Scene card;
        const V3f side(static_cast<float>(std::cos(turn * degree)), 0,
                       static_cast<float>(std::sin(turn * degree)));
        const V3f up(0, 1, 0);
        addTriangles(card, {-side - up, side - up, side + up, up - side}, {{0, 1, 2}, {0, 2, 3}});
        EXPECT_GT(framed({&card}, 1).second, 0.2) << turn;
    }
    for (const V3f& end : {V3f(0), V3f(0, 1, 0), V3f(0.46984631F, 0.34202014F, 0.81379768F)}) {
        Scene line;
        addTriangles(line, {V3f(7), V3f(7), V3f(7) + end}, {{0, 1, 2}});
        EXPECT_LE(framed({&line}, 1.5).first, 1 - 2 * kFramingMargin + 1e-6);
    }
}

}  // namespace
}  // namespace tavora::studio
