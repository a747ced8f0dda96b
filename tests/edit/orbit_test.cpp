#include "studio/edit/orbit.h"

#include <cmath>
#include <gtest/gtest.h>

#include "studio/scene/framing/default_view.h"

namespace tavora::studio {
namespace {

using Imath::V3d;

const Imath::Box3d kBox(V3d(-1, 0, -2), V3d(3, 2, 1));

Camera startCamera(bool orthographic = false) {
    Camera camera = framingCamera(Scene{}, 1);
    camera.cameraToWorld[3][2] += 8;
    camera.aspect = 1.5;
    camera.orthographic = orthographic;
    return camera;
}

/// Where a point of the world stands in the picture, in shares of its height.
V3d seen(const Orbit& orbit, const V3d& point) {
    const Camera& camera = orbit.camera();
    const V3d p = point * camera.cameraToWorld.inverse();
    const double height =
        camera.orthographic ? 2 * camera.halfHeight : -2 * p.z * std::tan(camera.verticalFov / 2);
    return {p.x / height, p.y / height, -p.z};
}

V3d row(const Camera& camera, int row) {
    const auto& m = camera.cameraToWorld;
    return {m[row][0], m[row][1], m[row][2]};
}

V3d interestOf(const Camera& camera) {
    const V3d eye = row(camera, 3), back = row(camera, 2);
    return eye - back * (eye - kBox.center()).dot(back);
}

double rollOf(const Camera& camera) {
    return std::asin(row(camera, 0).y / std::hypot(row(camera, 0).y, row(camera, 1).y));
}

TEST(Orbit, TurnsAroundItsPointWithALevelHorizonAndComesBackExactly) {
    Orbit orbit(startCamera(), kBox);
    const Camera start = orbit.camera();
    const V3d interest = interestOf(start);
    const double distance = seen(orbit, interest).z;
    EXPECT_EQ(start.aspect, 0);
    orbit.setInterest(row(start, 3) + row(start, 2));  // nobody turns about what is behind
    for (int i = 0; i < 5000; ++i) {
        orbit.turn(std::sin(i) * 0.2, std::cos(0.7 * i) * 0.3);
        ASSERT_NEAR(row(orbit.camera(), 0).y, 0, 1e-9);
        ASSERT_GT(row(orbit.camera(), 1).y, 0) << "never head over heels";
    }
    EXPECT_NEAR((seen(orbit, interest) - V3d(0, 0, distance)).length(), 0, 1e-9);
    EXPECT_NEAR(row(orbit.camera(), 0).cross(row(orbit.camera(), 1)).dot(row(orbit.camera(), 2)), 1,
                1e-12);
    EXPECT_FALSE(orbit.isAtStart());
    orbit.reset();
    EXPECT_TRUE(orbit.isAtStart());
    EXPECT_EQ(orbit.camera().cameraToWorld, start.cameraToWorld);
    const V3d nearer = interest + row(start, 2);
    orbit.turn(0.01, 0.02);
    EXPECT_GT(seen(orbit, nearer).x, 0) << "what is seen goes with the hand";
    EXPECT_LT(seen(orbit, nearer).y, 0);
}

TEST(Orbit, PansWithTheHandZoomsByTheFactorAndFramesAll) {
    for (const bool orthographic : {false, true}) {
        const Camera camera = startCamera(orthographic);
        const V3d interest = interestOf(camera), aside = interest + row(camera, 0);
        Orbit panned(camera, kBox);
        panned.turn(0.3, 0.1);
        panned.zoom(1.5);
        panned.pan(0.25, -0.125);
        EXPECT_NEAR(seen(panned, interest).x, 0.25, 1e-9);
        EXPECT_NEAR(seen(panned, interest).y, 0.125, 1e-9);

        Orbit orbit(camera, kBox);
        const double before = seen(orbit, aside).x;
        orbit.zoom(2);
        EXPECT_NEAR(seen(orbit, aside).x, 2 * before, 1e-9);
        orbit.zoom(0);
        orbit.zoom(NAN);
        for (int i = 0; i < 200; ++i)
            orbit.zoom(1.5);
        EXPECT_GT(seen(orbit, interest).z, 0) << "never past it";
        EXPECT_TRUE(std::isfinite(seen(orbit, aside).x));
        orbit.frame(kBox, 16.0 / 9);
        for (unsigned i = 0; i < 8; ++i) {
            const V3d corner(kBox.min.x + (i & 1U) * 4.0, (i & 2U) * 1.0, (i & 4U) * 0.75 - 2);
            const V3d at = seen(orbit, corner);
            EXPECT_LE(std::max(std::abs(at.x), std::abs(at.y)), 0.5);
            EXPECT_GT(at.z, 0);
        }
    }
}

TEST(Orbit, KeepsARollAndASteepStart) {
    Camera rolled = startCamera();
    rolled.cameraToWorld = Imath::M44d().setAxisAngle(V3d(0, 0, 1), 0.3) * rolled.cameraToWorld;
    Orbit orbit(rolled, kBox);
    for (int i = 0; i < 50; ++i)
        orbit.turn(0.07, std::sin(i) * 0.1);
    EXPECT_NEAR(rollOf(orbit.camera()), rollOf(rolled), 1e-9);

    Camera down;  // straight down, right to the east
    down.cameraToWorld = Imath::M44d(1, 0, 0, 0, 0, 0, -1, 0, 0, 1, 0, 0, 0, 9, 0, 1);
    Orbit steep(down, kBox);
    steep.turn(0, 0.2);
    EXPECT_NEAR(row(steep.camera(), 2).y, 1, 1e-12);
    steep.turn(0, -0.25);
    EXPECT_NEAR(row(steep.camera(), 2).y, std::sqrt(0.5), 1e-9);
}

}  // namespace
}  // namespace tavora::studio
