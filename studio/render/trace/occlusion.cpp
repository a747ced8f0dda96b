#include "studio/render/trace/occlusion.h"

#include "studio/render/trace/hit_filters.h"

namespace tavora::studio {

std::span<const double> Occlusion::trace(std::size_t count, bool judgesEnds,
                                         const RTCRayNp* origins) {
    RTCRayNp rays = batch_.embree();
    if (origins != nullptr) {
        rays.org_x = origins->org_x;
        rays.org_y = origins->org_y;
        rays.org_z = origins->org_z;
    }
    RayQuery query = rayQuery(*scene_, RTC_INTERSECT_CONTEXT_FLAG_COHERENT);
    query.occlusion = states_.data();
    if (judgesEnds) query.embree.filter = kLimitFilter;
    if (count > 0)
        rtcOccludedNp(scene_->embree(), &query.embree, &rays, static_cast<unsigned>(count));
    for (std::size_t i = 0; i < count; ++i)
        transmittances_[i] = isOccluded(rays.tfar[i]) ? 0 : 1;
    if (scene_->hasFilteredOccluders()) traceClear(rays, count);
    return {transmittances_.data(), count};
}

/// How much passes the clear surfaces that were hit: each ray alone.
void Occlusion::traceClear(const RTCRayNp& rays, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
        if (!states_[i].hitClear || transmittances_[i] == 0) continue;
        states_[i].skipsClear = false;
        RTCRay ray = batch_.ray(i);
        ray.org_x = rays.org_x[i];
        ray.org_y = rays.org_y[i];
        ray.org_z = rays.org_z[i];
        transmittances_[i] = scene_->transmittance(ray, states_[i]);
    }
}

}  // namespace tavora::studio
