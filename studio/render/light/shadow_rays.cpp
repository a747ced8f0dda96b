#include "studio/render/light/shadow_rays.h"

#include <cmath>
#include <limits>

#include "studio/scene/lighting/area_light.h"

namespace tavora::studio {
namespace {

/// Aims `ray` along `way`, to end a little before its end. False where that is too near.
bool aimAlong(const Imath::V3d& way, Ray& ray) {
    const double length = std::sqrt(way.length2());
    if (!(length > ray.tMin)) return false;
    ray.direction = way / length;
    ray.tMax = length * kBeforeLight;
    return true;
}

}  // namespace

bool ShadowRays::begin(const Ray& start, const ResolvedLight& light, const Imath::V3d& position,
                       const LightSample& sample, const Imath::V3d* facing) {
    middle_ = start;
    light_ = &light;
    facing_ = facing;
    nextPoint_ = 0;
    count_ = 0;
    sum_ = 0;
    if (std::isfinite(sample.distance))
        return aimAlong(position - sample.direction * sample.distance - start.origin, middle_);
    middle_.direction = -sample.direction;
    middle_.tMax = std::numeric_limits<double>::infinity();
    return true;
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
    } else if (!aimAlong(point - ray.origin, ray)) {
        return false;
    }
    return facing_ == nullptr || ray.direction.dot(*facing_) > 0;
}

double traceVisibility(const RayScene& scene, const Ray& start, const ResolvedLight& light,
                       const Imath::V3d& position, const LightSample& sample,
                       const Imath::V3d* facing, std::uint64_t& rayCount) {
    ShadowRays rays;
    if (!rays.begin(start, light, position, sample, facing)) return 1;
    for (Ray ray; rays.next(ray);) {
        ++rayCount;
        rays.add(scene.transmittance(ray));
    }
    return rays.visibility();
}

}  // namespace tavora::studio
