#include "studio/render/trace/camera_rays.h"

#include <algorithm>
#include <cmath>

#include "studio/util/deterministic_math.h"

namespace tavora::studio {
namespace {

Imath::V3d axis(const Camera& camera, int row) {
    const auto& m = camera.cameraToWorld;
    return Imath::V3d(m[row][0], m[row][1], m[row][2]).normalized();
}

/// Unit vectors along forward + (corner + right * x + down * y).
TAVORA_VECTOR_LOOPS
void perspectiveDirections(const Imath::V3d& forward, const Imath::V3d& corner,
                           const Imath::V3d& right, const Imath::V3d& down,
                           const double* __restrict x, const double* __restrict y,
                           std::size_t count, double* __restrict dx, double* __restrict dy,
                           double* __restrict dz) {
    const double fx = forward.x, fy = forward.y, fz = forward.z;
    const double cx = corner.x, cy = corner.y, cz = corner.z;
    const double rx = right.x, ry = right.y, rz = right.z;
    const double wx = down.x, wy = down.y, wz = down.z;
    for (std::size_t i = 0; i < count; ++i) {
        const double vx = fx + (cx + rx * x[i] + wx * y[i]);
        const double vy = fy + (cy + ry * x[i] + wy * y[i]);
        const double vz = fz + (cz + rz * x[i] + wz * y[i]);
        const double length = std::sqrt(vx * vx + vy * vy + vz * vz);
        dx[i] = vx / length;
        dy[i] = vy / length;
        dz[i] = vz / length;
    }
}

}  // namespace

CameraRays::CameraRays(const Camera& camera, int width, int height, int samples)
    : eye_(camera.cameraToWorld[3][0], camera.cameraToWorld[3][1], camera.cameraToWorld[3][2]),
      forward_(-axis(camera, 2)),
      orthographic_(camera.orthographic) {
    const double halfHeight =
        camera.orthographic ? camera.halfHeight : deterministic::tan(camera.verticalFov / 2);
    const double pixel = 2 * halfHeight / height;
    right_ = axis(camera, 0) * pixel;
    down_ = -axis(camera, 1) * pixel;
    corner_ = right_ * (-0.5 * width) + down_ * (-0.5 * height);
    // Together the samples alphaMode the pixel.
    footprint_ = pixel / std::sqrt(static_cast<double>(samples));
}

Ray CameraRays::through(double x, double y) const {
    CameraRayBatch rays(1);
    generate(&x, &y, 1, rays);
    return rays.ray(0);
}

void CameraRays::generate(const double* x, const double* y, std::size_t count,
                          CameraRayBatch& rays) const {
    if (orthographic_) {
        rays.footprint = footprint_;
        rays.coneSpread = 0;
        for (std::size_t i = 0; i < count; ++i) {
            rays.origins.set(i, eye_ + (corner_ + right_ * x[i] + down_ * y[i]));
            rays.directions.set(i, forward_);
        }
        return;
    }
    rays.footprint = 0;
    rays.coneSpread = footprint_;
    std::fill_n(rays.origins.x.begin(), count, eye_.x);
    std::fill_n(rays.origins.y.begin(), count, eye_.y);
    std::fill_n(rays.origins.z.begin(), count, eye_.z);
    perspectiveDirections(forward_, corner_, right_, down_, x, y, count, rays.directions.x.data(),
                          rays.directions.y.data(), rays.directions.z.data());
}

}  // namespace tavora::studio
