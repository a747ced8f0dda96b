#include "studio/edit/orbit.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace tavora::studio {
namespace {

using Imath::M44d;
using Imath::V3d;

constexpr double kTurn = std::numbers::pi;  // radians for a drag over the picture's height
constexpr double kSteepest = std::numbers::pi / 2 - 0.02;  // radians over the horizon
constexpr double kNearest = 1e-3;                          // of the scene's size
constexpr double kFarthest = 1e3;
constexpr V3d kUp(0, 1, 0);

V3d axis(const M44d& frame, int row) {
    return {frame[row][0], frame[row][1], frame[row][2]};
}

void setAxis(M44d& frame, int row, const V3d& value) {
    for (int i = 0; i < 3; ++i)
        frame[row][i] = value[i];
}

V3d eyeOf(const Camera& camera) {
    return axis(camera.cameraToWorld, 3);
}

V3d backOf(const Camera& camera) {
    return axis(camera.cameraToWorld, 2);
}

V3d rotated(const V3d& v, const V3d& about, double angle) {
    return v * std::cos(angle) + about.cross(v) * std::sin(angle) +
           about * (about.dot(v) * (1 - std::cos(angle)));
}

/// Keeps rounding from bending the frame over thousands of drags.
void straighten(M44d& frame) {
    const V3d back = axis(frame, 2).normalized();
    const V3d right = (axis(frame, 0) - back * back.dot(axis(frame, 0))).normalized();
    setAxis(frame, 0, right);
    setAxis(frame, 1, back.cross(right));
    setAxis(frame, 2, back);
}

void rotate(M44d& frame, const V3d& about, double angle) {
    for (int row = 0; row < 3; ++row)
        setAxis(frame, row, rotated(axis(frame, row), about, angle));
    straighten(frame);
}

/// The level axis to look up and down about; the camera's own while it has no roll.
V3d levelAxis(const M44d& frame) {
    const V3d level = kUp.cross(axis(frame, 2));
    return level.length() > 1e-6 ? level.normalized() : axis(frame, 0);
}

double lengthOf(const Imath::Box3d& box) {
    const double length = box.isEmpty() ? 0 : box.size().length();
    return length > 0 && std::isfinite(length) ? length : 1;
}

double distanceAlong(const Camera& camera, const Imath::Box3d& bounds) {
    const V3d middle = bounds.isEmpty() ? V3d(0) : bounds.center();
    const double distance = (eyeOf(camera) - middle).dot(backOf(camera));
    // A camera that looks away from the scene turns about a place before it.
    return distance > kNearest * lengthOf(bounds) ? distance : lengthOf(bounds);
}

}  // namespace

Orbit::Orbit(const Camera& start, const Imath::Box3d& bounds)
    : start_(start),
      camera_(start),
      startDistance_(distanceAlong(start, bounds)),
      distance_(startDistance_),
      size_(lengthOf(bounds)) {
    start_.aspect = 0;
    camera_.aspect = 0;
}

bool Orbit::isAtStart() const {
    return camera_.cameraToWorld == start_.cameraToWorld && camera_.halfHeight == start_.halfHeight;
}

V3d Orbit::interest() const {
    return eyeOf(camera_) - backOf(camera_) * distance_;
}

void Orbit::lookAt(const V3d& interest) {
    setAxis(camera_.cameraToWorld, 3, interest + backOf(camera_) * distance_);
}

void Orbit::turn(double x, double y) {
    M44d& frame = camera_.cameraToWorld;
    const V3d around = interest();
    const double steepness = std::asin(std::clamp(-backOf(camera_).y, -1.0, 1.0));
    // A camera that starts steeper than that may stay so, and come back.
    const double most = std::max(kSteepest, std::abs(steepness));
    const double wanted = std::clamp(steepness - y * kTurn, -most, most);
    rotate(frame, levelAxis(frame), wanted - steepness);
    rotate(frame, kUp, -x * kTurn);
    lookAt(around);
}

void Orbit::pan(double x, double y) {
    const double height = camera_.orthographic ? 2 * camera_.halfHeight
                                               : 2 * distance_ * std::tan(camera_.verticalFov / 2);
    const M44d& frame = camera_.cameraToWorld;
    lookAt(interest() + (axis(frame, 1) * y - axis(frame, 0) * x) * height);
}

void Orbit::zoom(double factor) {
    if (!(factor > 0) || !std::isfinite(factor)) return;
    double& reach = camera_.orthographic ? camera_.halfHeight : distance_;
    const V3d towards = interest();
    reach = std::clamp(reach / factor, std::min(reach, kNearest * size_),
                       std::max(reach, kFarthest * size_));
    lookAt(towards);
}

void Orbit::frame(const Imath::Box3d& box) {
    if (box.isEmpty()) return;
    const double radius = lengthOf(box) / 2;
    if (camera_.orthographic) {
        camera_.halfHeight = radius;
        distance_ = std::max(distance_, 2 * radius);
    } else {
        distance_ = radius / std::sin(camera_.verticalFov / 2);
    }
    lookAt(box.center());
}

void Orbit::reset() {
    camera_ = start_;
    distance_ = startDistance_;
}

}  // namespace tavora::studio
