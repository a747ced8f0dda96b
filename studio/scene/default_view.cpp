#include "studio/scene/default_view.h"

#include <algorithm>
#include <cmath>

namespace tavora::studio {
namespace {

using Imath::V3d;

constexpr double kFov = 0.6;      // radians, the longer lens of a portrait
constexpr double kMargin = 1.05;  // of the framed extents

/// A camera frame from its axes; `back` points from the target to the camera.
struct Axes {
    V3d right;
    V3d up;
    V3d back;
};

Axes axesLookingAlong(const V3d& forward) {
    Axes axes;
    axes.back = -forward.normalized();
    axes.right = V3d(0, 1, 0).cross(axes.back).normalized();
    axes.up = axes.back.cross(axes.right);
    return axes;
}

Imath::M44d frame(const Axes& a, const V3d& origin) {
    return Imath::M44d(a.right.x, a.right.y, a.right.z, 0, a.up.x, a.up.y, a.up.z, 0, a.back.x,
                       a.back.y, a.back.z, 0, origin.x, origin.y, origin.z, 1);
}

std::array<V3d, 8> corners(const Imath::Box3d& box) {
    std::array<V3d, 8> all;
    for (unsigned i = 0; i < 8; ++i) {
        all[i] = V3d((i & 1U) ? box.max.x : box.min.x, (i & 2U) ? box.max.y : box.min.y,
                     (i & 4U) ? box.max.z : box.min.z);
    }
    return all;
}

}  // namespace

Camera framingCamera(const Imath::Box3d& bounds, double aspect) {
    const Imath::Box3d box = bounds.isEmpty() ? Imath::Box3d(V3d(-0.5), V3d(0.5)) : bounds;
    const Axes axes = axesLookingAlong(V3d(-0.45, -0.3, -1.0));
    const double tanV = std::tan(kFov / 2);
    const double tanH = tanV * aspect;

    // The nearest eye on the line through the centre that sees every corner.
    double distance = 0;
    for (const V3d& corner : corners(box)) {
        const V3d p = corner - box.center();
        const double towards = p.dot(axes.back);
        distance = std::max({distance, towards + kMargin * std::abs(p.dot(axes.up)) / tanV,
                             towards + kMargin * std::abs(p.dot(axes.right)) / tanH});
    }
    if (!(distance > 0)) distance = 1;

    Camera camera;
    camera.name = "Framing";
    camera.verticalFov = kFov;
    camera.cameraToWorld = frame(axes, box.center() + axes.back * distance);
    return camera;
}

Light keyLight(const Camera& camera) {
    V3d right;
    V3d up;
    V3d back;
    camera.cameraToWorld.multDirMatrix(V3d(1, 0, 0), right);
    camera.cameraToWorld.multDirMatrix(V3d(0, 1, 0), up);
    camera.cameraToWorld.multDirMatrix(V3d(0, 0, 1), back);
    Light light;
    light.name = "Key";
    light.direction = -(back * 1.0 - right * 0.8 + up * 0.9).normalized();
    return light;
}

}  // namespace tavora::studio
