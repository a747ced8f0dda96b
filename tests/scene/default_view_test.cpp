// The camera of a file that has none.

#include "studio/scene/framing/default_view.h"

#include <cmath>
#include <gtest/gtest.h>

#include "tests/scene/made_scene.h"

namespace tavora::studio {
namespace {

using Imath::V3d;
using Imath::V3f;

/// The box around the projected triangles, in halves of the picture: -1 to 1.
Imath::Box2d projected(const std::vector<const Scene*>& scenes, const Camera& camera,
                       double aspect) {
    const Imath::M44d toCamera = camera.cameraToWorld.inverse();
    const double slope = std::tan(camera.verticalFov / 2);
    Imath::Box2d box;
    for (const Scene* scene : scenes) {
        for (const auto& object : scene->objects) {
            for (const V3f& position : object->parts[0].mesh->positions) {
                const V3d p = V3d(position) * toCamera;
                EXPECT_LT(p.z, 0) << "before the camera";
                box.extendBy(Imath::V2d(p.x / aspect, p.y) / (-p.z * slope));
            }
        }
    }
    return box;
}

void expectFramed(const std::vector<const Scene*>& scenes) {
    for (const double aspect : {0.1, 9.0 / 16, 1.0, 16.0 / 9, 8.0}) {
        const Camera camera = framingCameraOfFilm(scenes, aspect);
        const Imath::Box2d box = projected(scenes, camera, aspect);
        EXPECT_NEAR(std::max(box.max.x, box.max.y), 1 - 2 * kFramingMargin, 1e-6) << aspect;
        EXPECT_NEAR(box.center().x, 0, 1e-6) << aspect;
        EXPECT_NEAR(box.center().y, 0, 1e-6) << aspect;
    }
}

TEST(DefaultView, TheProjectedBoundsAreCentredWithTheMarginInAnyPicture) {
    Scene box;
    addBox(box, {10, -3, 1000}, {12, 5, 1001});
    expectFramed({&box});
    // What is near decides one side, what is far another.
    Scene deep;
    addBox(deep, {0, 0, 0}, {0.1F, 0.1F, 0.1F});
    addBox(deep, {-40, -2, -300}, {-39, 30, -299});
    addBox(deep, {5, 0.5F, -9}, {6, 1, 3});
    expectFramed({&deep});
    Scene ground;
    addTriangles(ground, {{-500, 0, -500}, {500, 0, -500}, {0, 0, 500}}, {{0, 2, 1}});
    expectFramed({&ground});
    expectFramed({&box, &deep, &ground});
}

TEST(DefaultView, IsAThreeQuarterViewThatShowsFlatScenesFromTheirBroadSide) {
    Scene box;
    addBox(box, V3f(-1), V3f(1));
    const Camera camera = framingCamera(box, 1);
    const auto& m = camera.cameraToWorld;
    const double degree = M_PI / 180;
    EXPECT_NEAR(std::atan2(m[2][0], m[2][2]), 30 * degree, 1e-6);
    EXPECT_NEAR(std::asin(m[2][1]), 20 * degree, 1e-6);
    EXPECT_NEAR(m[0][1], 0, 1e-12) << "level";
    for (int turn = 0; turn < 180; turn += 5) {
        Scene card;
        const auto x = static_cast<float>(std::cos(turn * degree));
        const auto z = static_cast<float>(std::sin(turn * degree));
        addTriangles(card, {{-x, -1, -z}, {x, -1, z}, {x, 1, z}, {-x, 1, -z}},
                     {{0, 1, 2}, {0, 2, 3}});
        const Imath::Box2d seen = projected({&card}, framingCamera(card, 1), 1);
        EXPECT_GT(seen.size().x, 0.2) << turn;
    }
}

TEST(DefaultView, ScenesOfNoSizeHaveACameraThatSeesThem) {
    const V3f towards(0.46984631F, 0.34202014F, 0.81379768F);  // where the camera is
    for (const V3f& end : {V3f(0), towards, V3f(0, 1, 0)}) {
        Scene line;
        addTriangles(line, {V3f(7), V3f(7), V3f(7) + end}, {{0, 1, 2}});
        const Camera camera = framingCamera(line, 1.5);
        const Imath::Box2d box = projected({&line}, camera, 1.5);
        EXPECT_NEAR(box.center().x, 0, 1e-6);
        EXPECT_NEAR(box.center().y, 0, 1e-6);
        EXPECT_LE(box.max.y, 1 - 2 * kFramingMargin + 1e-6);
    }
    Scene cube;
    addBox(cube, V3f(-0.5), V3f(0.5));
    EXPECT_EQ(framingCamera(Scene{}, 2).cameraToWorld, framingCamera(cube, 2).cameraToWorld);
}

}  // namespace
}  // namespace tavora::studio
