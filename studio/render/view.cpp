#include "studio/render/view.h"

#include <cmath>

#include "studio/util/deterministic_math.h"

namespace tavora::studio {
namespace {

Imath::V3d axis(const Camera& camera, int row) {
    const auto& m = camera.cameraToWorld;
    return Imath::V3d(m[row][0], m[row][1], m[row][2]).normalized();
}

}  // namespace

View::View(const Camera& camera, int width, int height, int samples)
    : eye_(camera.cameraToWorld[3][0], camera.cameraToWorld[3][1], camera.cameraToWorld[3][2]),
      forward_(-axis(camera, 2)),
      orthographic_(camera.orthographic) {
    const double halfHeight =
        camera.orthographic ? camera.halfHeight : deterministic::tan(camera.verticalFov / 2);
    const double pixel = 2 * halfHeight / height;
    right_ = axis(camera, 0) * pixel;
    down_ = -axis(camera, 1) * pixel;
    corner_ = right_ * (-0.5 * width) + down_ * (-0.5 * height);
    // Together the samples cover the pixel.
    footprint_ = pixel / std::sqrt(static_cast<double>(samples));
}

}  // namespace tavora::studio
