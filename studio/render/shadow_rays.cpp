#include "studio/render/shadow_rays.h"

#include <cmath>
#include <limits>

#include "studio/scene/lighting/area_light.h"

namespace tavora::studio {
namespace {

/// Shadow rays end a little before the light.
constexpr double kAlmost = 1 - 1e-6;

/// Turns `ray` by `way`, to end almost there. False where that is too near.
bool pointAlong(const Imath::V3d& way, Ray& ray) {
    const double length = std::sqrt(way.length2());
    if (!(length > ray.nearest)) return false;
    ray.direction = way / length;
    ray.farthest = length * kAlmost;
    return true;
}

}  // namespace

ShadowOrigin shadowOrigin(const SurfacePoint& point) {
    const SceneMesh& source = point.source();
    return {shadowStart(point), point.spotSize, source.surface->selfShadow ? nullptr : &source};
}

Ray ShadowOrigin::ray() const {
    Ray ray;
    ray.origin = position;
    ray.spot = spot;
    ray.spared = spared;
    return ray;
}

bool turnToMiddle(const LitPlace& place, Ray& ray) {
    if (std::isfinite(place.distance)) {
        return pointAlong(place.position - place.direction * place.distance - ray.origin, ray);
    }
    ray.direction = -place.direction;
    ray.farthest = std::numeric_limits<double>::infinity();
    return true;
}

bool ShadowRays::aim(const Ray& base, const ResolvedLight& light, const LitPlace& place) {
    middle_ = base;
    light_ = &light;
    facing_ = place.facing;
    nextPoint_ = 0;
    count_ = 0;
    sum_ = 0;
    return turnToMiddle(place, middle_);
}

bool ShadowRays::next(Ray& ray) {
    while (nextPoint_ < light_->points.size() && !isKnown()) {
        ray = middle_;
        if (aimAt(light_->points[nextPoint_++], ray)) return true;
    }
    ray = middle_;
    return count_ == 0;
}

bool ShadowRays::isKnown() const {
    return count_ >= kAreaProbes && (sum_ == 0 || sum_ == static_cast<double>(count_));
}

/// False for a point that the lit side does not face.
bool ShadowRays::aimAt(const Imath::V3d& point, Ray& ray) const {
    if (light_->light->kind == LightKind::Directional) {
        ray.direction = point;
    } else if (!pointAlong(point - ray.origin, ray)) {
        return false;
    }
    return facing_ == nullptr || ray.direction.dot(*facing_) > 0;
}

}  // namespace tavora::studio
