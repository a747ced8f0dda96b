#include "studio/edit/orbit.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace tavora::studio {
namespace {

using Imath::M44d;
using Imath::V3d;

constexpr double kTurn = std::numbers::pi;  // radians for a drag over the picture's height
constexpr double kMaxElevation = std::numbers::pi / 2 - 0.02;  // radians over the horizon
constexpr double kMinDistance = 1e-3;  // relative to the scene's size, as the next
constexpr double kMaxDistance = 1e3;
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

/// Makes the axes orthonormal again: otherwise rounding would skew them over thousands of
/// drags.
void orthonormalize(M44d& frame) {
    const V3d back = axis(frame, 2).normalized();
    const V3d right = (axis(frame, 0) - back * back.dot(axis(frame, 0))).normalized();
    setAxis(frame, 0, right);
    setAxis(frame, 1, back.cross(right));
    setAxis(frame, 2, back);
}

/// Rotates the camera about the axis `axisOf` through a point.
void rotate(M44d& frame, const V3d& point, const V3d& axisOf, double angle) {
    for (int row = 0; row < 3; ++row)
        setAxis(frame, row, rotated(axis(frame, row), axisOf, angle));
    setAxis(frame, 3, point + rotated(axis(frame, 3) - point, axisOf, angle));
    orthonormalize(frame);
}

/// The horizontal axis for looking up and down; the camera's own when it has no roll.
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
    // A camera that looks away from the scene turns about a point in front of it.
    return distance > kMinDistance * lengthOf(bounds) ? distance : lengthOf(bounds);
}

}  // namespace

Orbit::Orbit(const Camera& start, const Imath::Box3d& bounds)
    : start_(start),
      camera_(start),
      startInterest_(eyeOf(start) - backOf(start) * distanceAlong(start, bounds)),
      interest_(startInterest_),
      bounds_(bounds),
      size_(lengthOf(bounds)) {
    start_.aspect = 0;
    camera_.aspect = 0;
}

void Orbit::setStart(const Camera& start) {
    const bool wasAtStart = isAtStart();
    start_ = start;
    start_.aspect = 0;
    startInterest_ = eyeOf(start) - backOf(start) * distanceAlong(start, bounds_);
    if (wasAtStart) reset();
}

bool Orbit::isAtStart() const {
    return camera_.cameraToWorld == start_.cameraToWorld && camera_.halfHeight == start_.halfHeight;
}

void Orbit::setInterest(const V3d& point) {
    const V3d before = interest_;
    interest_ = point;
    if (!(depth() > kMinDistance * size_)) interest_ = before;
}

double Orbit::depth() const {
    return (eyeOf(camera_) - interest_).dot(backOf(camera_));
}

void Orbit::moveTo(const V3d& eye) {
    setAxis(camera_.cameraToWorld, 3, eye);
}

void Orbit::turn(double x, double y) {
    M44d& frame = camera_.cameraToWorld;
    const double elevation = std::asin(std::clamp(-backOf(camera_).y, -1.0, 1.0));
    // A camera that starts steeper than kMaxElevation may stay so, and return to it.
    const double max = std::max(kMaxElevation, std::abs(elevation));
    const double wanted = std::clamp(elevation - y * kTurn, -max, max);
    rotate(frame, interest_, levelAxis(frame), wanted - elevation);
    rotate(frame, interest_, kUp, -x * kTurn);
}

void Orbit::pan(double x, double y) {
    const double height = camera_.orthographic ? 2 * camera_.halfHeight
                                               : 2 * depth() * std::tan(camera_.verticalFov / 2);
    const M44d& frame = camera_.cameraToWorld;
    moveTo(eyeOf(camera_) + (axis(frame, 1) * y - axis(frame, 0) * x) * height);
}

void Orbit::zoom(double factor) {
    if (!(factor > 0) || !std::isfinite(factor)) return;
    const V3d away = eyeOf(camera_) - interest_;
    double& reach = camera_.halfHeight;
    const double before = camera_.orthographic ? reach : away.length();
    const double after = std::clamp(before / factor, std::min(before, kMinDistance * size_),
                                    std::max(before, kMaxDistance * size_));
    if (camera_.orthographic) {
        // The point of interest must not move in the picture.
        const V3d aside = away - backOf(camera_) * depth();
        moveTo(eyeOf(camera_) + aside * (after / before - 1));
        reach = after;
    } else {
        moveTo(interest_ + away * (after / before));
    }
}

void Orbit::frame(const Imath::Box3d& box, double aspect) {
    if (box.isEmpty()) return;
    const double radius = lengthOf(box) / 2;
    const double narrow = std::min(aspect, 1.0);
    const double halfFov = std::atan(std::tan(camera_.verticalFov / 2) * narrow);
    double distance = radius / std::sin(halfFov);
    if (camera_.orthographic) {
        camera_.halfHeight = radius / narrow;
        distance = std::max(depth(), 2 * radius);
    }
    interest_ = box.center();
    moveTo(interest_ + backOf(camera_) * distance);
}

void Orbit::reset() {
    camera_ = start_;
    interest_ = startInterest_;
}

}  // namespace tavora::studio
