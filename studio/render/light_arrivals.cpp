#include "studio/render/light_arrivals.h"

#include <cmath>

namespace tavora::studio {
namespace {

/// Shadow rays end a little before the light.
constexpr double kAlmost = 1 - 1e-6;

}  // namespace

LightArrivals::LightArrivals(const RayScene& scene, const LightRig& lights)
    : scene_(&scene), lights_(&lights), slots_(lights.lights.size()) {
    for (std::size_t light = 0; light < slots_.size(); ++light)
        slots_[light].arrival.direction = lights.lights[light].light->direction;
}

void LightArrivals::start(const SurfacePoint& point, KeptPath* path, KeptPath::Place place) {
    point_ = &point;
    known_ = {};
    asked_ = {};
    path_ = path;
    place_ = place;
    ++sample_;
}

void LightArrivals::prepare() {
    for (std::size_t light = 0; light < slots_.size(); ++light) {
        if (kept(light) == KeptShare::Unknown && cosine(light) > 0) settle(light);
    }
}

double LightArrivals::cosine(std::size_t light) {
    const Slot& slot = meet(light);
    return slot.distance >= 0 ? -slot.arrival.direction.dot(point_->normal) : 0;
}

const LightArrival& LightArrivals::at(std::size_t light) {
    Slot& slot = slots_[light];
    if (!asked_.empty()) asked_[light] = 1;
    if (kept(light) == KeptShare::None) {
        slot.arrival.lit = false;
        return slot.arrival;
    }
    meet(light);
    settle(light);
    return slot.arrival;
}

LightArrival LightArrivals::elsewhere(std::size_t light, const Imath::V3d& position) {
    Slot slot;
    slot.distance = arrivingLight(*lights_, lights_->lights[light], position,
                                  slot.arrival.direction, slot.arrival.color);
    if (!(slot.distance >= 0)) return slot.arrival;
    const double nearest = 4 * roundingMargin(magnitudeOf(position));
    const double share = passing(position, position, slot, nearest, 0);
    slot.arrival.lit = share > 0;
    slot.arrival.color *= share;
    return slot.arrival;
}

LightArrivals::Slot& LightArrivals::meet(std::size_t light) {
    Slot& slot = slots_[light];
    if (slot.metAt == sample_) return slot;
    slot.metAt = sample_;
    slot.arrival.lit = false;
    const LitLight& lit = lights_->lights[light];
    if (lit.light->kind == LightKind::Directional) {
        // The same everywhere: only what shadows took off its colour comes back.
        slot.arrival.color = lit.color;
        slot.distance = std::numeric_limits<double>::infinity();
        return slot;
    }
    slot.distance =
        arrivingLight(*lights_, lit, point_->position, slot.arrival.direction, slot.arrival.color);
    return slot;
}

void LightArrivals::settle(std::size_t light) {
    Slot& slot = slots_[light];
    if (slot.settledAt == sample_) return;
    slot.settledAt = sample_;
    const KeptShare known = kept(light);
    double share = known == KeptShare::All ? 1 : knownShare(light);
    if (share < 0) share = traceShare(slot);
    if (known == KeptShare::Unknown && path_ != nullptr) path_->keepShare(place_, light, share);
    slot.arrival.lit = share > 0;
    slot.arrival.color *= share;
}

KeptShare LightArrivals::kept(std::size_t light) const {
    return path_ != nullptr ? path_->share(place_, light) : KeptShare::Unknown;
}

/// Share of the light that passes to the sample; 0 where it is dark or behind.
double LightArrivals::traceShare(const Slot& slot) {
    if (!(slot.distance >= 0) || isBehind(slot.arrival.direction)) return 0;
    return passing(startOfShadows(), point_->position, slot, 0, point_->spotSize);
}

const Imath::V3d& LightArrivals::startOfShadows() {
    if (startFoundAt_ != sample_) {
        start_ = shadowStart(*point_);
        startFoundAt_ = sample_;
    }
    return start_;
}

bool LightArrivals::wantsRay(std::size_t light, Ray& ray) {
    return cosine(light) > 0 &&
           rayToLight(startOfShadows(), point_->position, slots_[light], 0, point_->spotSize, ray);
}

bool LightArrivals::isBehind(const Imath::V3d& direction) const {
    return direction.dot(point_->normal) >= 0 && direction.dot(point_->geometricNormal) >= 0;
}

/// Share of the light that comes from the light that reaches `lit` to `start`.
double LightArrivals::passing(const Imath::V3d& start, const Imath::V3d& lit, const Slot& slot,
                              double nearest, double spot) {
    Ray ray;
    if (!rayToLight(start, lit, slot, nearest, spot, ray)) return 1;
    ++shadowRays_;
    return scene_->transmittance(ray);
}

/// From `start` to where the light that reaches `lit` is; false where it is too near.
bool LightArrivals::rayToLight(const Imath::V3d& start, const Imath::V3d& lit, const Slot& slot,
                               double nearest, double spot, Ray& ray) {
    ray.origin = start;
    ray.direction = -slot.arrival.direction;
    ray.nearest = nearest;
    ray.farthest = std::numeric_limits<double>::infinity();
    ray.spot = spot;
    ray.spread = 0;
    if (std::isfinite(slot.distance)) {
        const Imath::V3d toLight = lit - slot.arrival.direction * slot.distance - start;
        const double length = toLight.length();
        if (!(length > nearest)) return false;
        ray.direction = toLight / length;
        ray.farthest = length * kAlmost;
    }
    return true;
}

}  // namespace tavora::studio
