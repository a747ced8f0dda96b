#include "studio/scene/default_view.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "studio/scene/portable_math.h"

namespace tavora::studio {
namespace {

using Imath::V3d;

constexpr double kFov = 0.6;      // radians, the longer lens of a portrait
constexpr double kMargin = 0.96;  // share of the picture that the scene may fill

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

/// How far the scene reaches past the four side planes of a view frustum whose
/// apex is the origin: per plane the greatest distance along its normal.
class FrustumFit {
  public:
    FrustumFit(const Axes& axes, double tanH, double tanV)
        : axes_(axes),
          tanH_(tanH),
          tanV_(tanV),
          right_(axes.right + axes.back * tanH),
          left_(-axes.right + axes.back * tanH),
          top_(axes.up + axes.back * tanV),
          bottom_(-axes.up + axes.back * tanV) {}

    void include(const V3d& p) {
        mostRight_ = std::max(mostRight_, p.dot(right_));
        mostLeft_ = std::max(mostLeft_, p.dot(left_));
        highest_ = std::max(highest_, p.dot(top_));
        lowest_ = std::max(lowest_, p.dot(bottom_));
    }

    /// The nearest eye from which all is inside: across, the two planes of a
    /// pair meet in a line; the pair that needs more distance decides it.
    V3d eye() const {
        const double distance =
            std::max((mostRight_ + mostLeft_) / (2 * tanH_), (highest_ + lowest_) / (2 * tanV_));
        return axes_.right * ((mostRight_ - mostLeft_) / 2) +
               axes_.up * ((highest_ - lowest_) / 2) + axes_.back * distance;
    }

  private:
    static constexpr double kNone = -std::numeric_limits<double>::infinity();

    Axes axes_;
    double tanH_;
    double tanV_;
    V3d right_;
    V3d left_;
    V3d top_;
    V3d bottom_;
    double mostRight_ = kNone;
    double mostLeft_ = kNone;
    double highest_ = kNone;
    double lowest_ = kNone;
};

void includeScene(const Scene& scene, FrustumFit& fit) {
    for (const auto& object : scene.objects) {
        for (const Part& part : object->parts) {
            for (const auto& triangle : part.mesh->triangles) {
                for (std::uint32_t i : triangle) {
                    fit.include(V3d(part.mesh->positions[i]) * object->objectToWorld);
                }
            }
        }
    }
}

void includeUnitCube(FrustumFit& fit) {
    for (unsigned i = 0; i < 8; ++i) {
        fit.include(V3d((i & 1U) ? 0.5 : -0.5, (i & 2U) ? 0.5 : -0.5, (i & 4U) ? 0.5 : -0.5));
    }
}

/// Keeps the eye off a scene that is a single point.
V3d backedOff(const V3d& eye, const Imath::Box3d& bounds, const Axes& axes) {
    if (bounds.isEmpty() || bounds.size().length2() > 0) return eye;
    return eye + axes.back;
}

}  // namespace

Camera framingCamera(const Scene& scene, double aspect) {
    const Axes axes = axesLookingAlong(V3d(-0.45, -0.3, -1.0));
    const double tanV = portable::tan(kFov / 2);
    FrustumFit fit(axes, tanV * aspect * kMargin, tanV * kMargin);
    if (scene.bounds.isEmpty()) {
        includeUnitCube(fit);
    } else {
        includeScene(scene, fit);
    }
    Camera camera;
    camera.name = "Framing";
    camera.verticalFov = kFov;
    camera.cameraToWorld = frame(axes, backedOff(fit.eye(), scene.bounds, axes));
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
