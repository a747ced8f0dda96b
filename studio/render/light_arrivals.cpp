#include "studio/render/light_arrivals.h"

#include <algorithm>
#include <cmath>

#include "studio/render/rounding_margin.h"
#include "studio/scene/lighting/light_sample.h"

namespace tavora::studio {

LightArrivals::LightArrivals(const RayScene& scene, const LightSet& lights)
    : scene_(&scene),
      lights_(&lights),
      slots_(lights.lights.size()),
      unknown_(lights.lights.size(), -1.0) {
    for (std::size_t light = 0; light < slots_.size(); ++light) {
        if (lights.lights[light].light->kind != LightKind::Directional) continue;
        meetAnew(light);
        slots_[light].metAt = kAlways;
    }
}

void LightArrivals::prepare() {
    for (std::size_t light = 0; light < slots_.size(); ++light) {
        if (!kept(light).isKnown && cosine(light) > 0) settle(light, findShare(light));
    }
}

double LightArrivals::cosine(std::size_t light) {
    const Slot& slot = meet(light);
    return slot.distance >= 0 ? -slot.whole.direction.dot(point_->normal) : 0;
}

const LightArrival& LightArrivals::workedOut(std::size_t light) {
    const Slot& slot = slots_[light];
    if (slot.settledAt != sample_) settle(light, shareOf(light));
    return slot.arrival;
}

void LightArrivals::settle(std::size_t light, double share) {
    const LightArrival& whole = meet(light).whole;
    Slot& slot = slots_[light];
    slot.settledAt = sample_;
    slot.share = share;
    slot.arrival = {share > 0, whole.direction, whole.color * share};
}

LightsMet LightArrivals::met() const {
    LightsMet met;
    for (std::size_t light = 0; light < std::min(slots_.size(), LightsMet::kMost); ++light) {
        const Slot& slot = slots_[light];
        if (slot.askedAt != sample_) continue;
        met.note(light, slot.settledAt == sample_ ? slot.share : shares_[light]);
    }
    return met;
}

LightArrival LightArrivals::elsewhere(std::size_t light, const Imath::V3d& position) {
    LightArrival arrival;
    const auto sample = sampleLight(*lights_, lights_->lights[light], position);
    if (!sample) return arrival;
    arrival.direction = sample->direction;
    arrival.color = sample->color;
    const double distance = sample->distance;
    Ray base;
    base.origin = position;
    base.nearest = 4 * roundingMargin(magnitudeOf(position));
    ShadowRays rays;
    const ResolvedLight& lit = lights_->lights[light];
    const bool blockable = canBeShadowed(lit, *point_) &&
                           rays.aim(base, lit, {position, arrival.direction, distance, nullptr});
    const double share = blockable ? passing(rays) : 1;
    arrival.lit = share > 0;
    arrival.color *= share;
    return arrival;
}

void LightArrivals::meetAnew(std::size_t light) {
    Slot& slot = slots_[light];
    slot.metAt = sample_;
    slot.whole.lit = true;
    if (ways_ != nullptr && ways_[light].distance != LightWay::kUnknown) {
        const LightWay& way = ways_[light];
        slot.distance = way.distance;
        slot.whole.direction = way.direction;
        slot.whole.color = way.color;
        return;
    }
    const Imath::V3d position = point_ != nullptr ? point_->position : Imath::V3d(0);
    const auto sample = sampleLight(*lights_, lights_->lights[light], position);
    slot.distance = sample ? sample->distance : -1;
    if (!sample) return;
    slot.whole.direction = sample->direction;
    slot.whole.color = sample->color;
}

/// What is kept of it, or what is traced and then kept.
double LightArrivals::findShare(std::size_t light) {
    const KeptShare before = kept(light);
    const double share = before.share >= 0 ? before.share : traceShare(light);
    if (!before.isKnown && path_ != nullptr) path_->keepShare(place_, light, share);
    return share;
}

KeptShare LightArrivals::kept(std::size_t light) const {
    return path_ != nullptr ? path_->share(place_, light) : KeptShare{};
}

/// Share of the light that passes to the sample; 0 where it is dark or behind.
double LightArrivals::traceShare(std::size_t light) {
    const Slot& slot = meet(light);
    if (!(slot.distance >= 0) || isBehind(*point_, slot.whole.direction)) return 0;
    const ResolvedLight& lit = lights_->lights[light];
    ShadowRays rays;
    const bool blockable =
        canBeShadowed(lit, *point_) &&
        rays.aim(shadowRay(), lit,
                 {point_->position, slot.whole.direction, slot.distance, &point_->smoothNormal});
    return blockable ? passing(rays) : 1;
}

const Ray& LightArrivals::shadowRay() {
    if (shadowRayFoundAt_ != sample_) {
        shadowRay_ = shadowOrigin(*point_).ray();
        shadowRayFoundAt_ = sample_;
    }
    return shadowRay_;
}

double LightArrivals::passing(ShadowRays& rays) {
    for (Ray ray; rays.next(ray);) {
        ++shadowRays_;
        rays.add(scene_->transmittance(ray));
    }
    return rays.share();
}

}  // namespace tavora::studio
