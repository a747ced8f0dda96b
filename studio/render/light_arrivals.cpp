#include "studio/render/light_arrivals.h"

#include <cmath>

namespace tavora::studio {

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
        if (!kept(light).isKnown && cosine(light) > 0) settle(light);
    }
}

double LightArrivals::cosine(std::size_t light) {
    const Slot& slot = meet(light);
    return slot.distance >= 0 ? -slot.arrival.direction.dot(point_->normal) : 0;
}

const LightArrival& LightArrivals::at(std::size_t light) {
    Slot& slot = slots_[light];
    if (!asked_.empty()) asked_[light] = 1;
    if (knownShare(light) == 0 || kept(light).share == 0) {
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
    Ray base;
    base.origin = position;
    base.nearest = 4 * roundingMargin(magnitudeOf(position));
    ShadowRays rays;
    const bool blockable = rays.aim(base, lights_->lights[light],
                                    {position, slot.arrival.direction, slot.distance, nullptr});
    const double share = blockable ? passing(rays) : 1;
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
    const KeptShare before = kept(light);
    double share = before.share;
    if (share < 0) share = knownShare(light);
    if (share < 0) share = traceShare(light);
    if (!before.isKnown && path_ != nullptr) path_->keepShare(place_, light, share);
    slot.arrival.lit = share > 0;
    slot.arrival.color *= share;
}

KeptShare LightArrivals::kept(std::size_t light) const {
    return path_ != nullptr ? path_->share(place_, light) : KeptShare{};
}

/// Share of the light that passes to the sample; 0 where it is dark or behind.
double LightArrivals::traceShare(std::size_t light) {
    const Slot& slot = slots_[light];
    if (!(slot.distance >= 0) || isBehind(slot.arrival.direction)) return 0;
    ShadowRays rays;
    const bool blockable =
        rays.aim(shadowRay(), lights_->lights[light],
                 {point_->position, slot.arrival.direction, slot.distance, &point_->normal});
    return blockable ? passing(rays) : 1;
}

const Ray& LightArrivals::shadowRay() {
    if (shadowRayFoundAt_ != sample_) {
        shadowRay_ = shadowRayFrom(*point_);
        shadowRayFoundAt_ = sample_;
    }
    return shadowRay_;
}

bool LightArrivals::isBehind(const Imath::V3d& direction) const {
    return direction.dot(point_->normal) >= 0 && direction.dot(point_->geometricNormal) >= 0;
}

double LightArrivals::passing(ShadowRays& rays) {
    for (Ray ray; rays.next(ray);) {
        ++shadowRays_;
        rays.add(scene_->transmittance(ray));
    }
    return rays.share();
}

}  // namespace tavora::studio
