#include "studio/render/viewing_stream.h"

#include <algorithm>

namespace tavora::studio {

/// Which of the triangles at an edge or a corner is met differs in a stream by
/// rounding.
bool ViewingStream::isNearEdge(std::size_t at) const {
    constexpr float kNear = 1e-5F;
    return std::min({u_[at], v_[at], 1.0F - u_[at] - v_[at]}) < kNear;
}

void ViewingStream::start(std::span<const Ray> rays) {
    for (std::size_t i = 0; i < rays.size(); ++i) {
        rays_.set(i, rays[i]);
        progress_[i].ray = &rays[i];
        progress_[i].best = ViewingProgress{}.best;
    }
    std::fill_n(meshes_.begin(), rays.size(), RTC_INVALID_GEOMETRY_ID);
}

/// Embree leaves out what is null.
RTCRayHitNp ViewingStream::embree() {
    RTCRayHitNp query{};
    query.ray = rays_.embree();
    query.hit.u = u_.data();
    query.hit.v = v_.data();
    query.hit.primID = triangles_.data();
    query.hit.geomID = meshes_.data();
    return query;
}

void ViewingStream::firstHits(std::span<const Ray> rays, std::span<HitKey> hits) {
    start(rays);
    RayContext context = rayContext(*scene_, RTC_INTERSECT_CONTEXT_FLAG_COHERENT);
    context.viewing = progress_.data();
    const RTCRayHitNp query = embree();
    rtcIntersectNp(scene_->embree(), &context.embree, &query, static_cast<unsigned>(rays.size()));
    for (std::size_t i = 0; i < rays.size(); ++i) {
        // Without a hit the best one is what it started as: infinitely far.
        hits[i] = progress_[i].best;
        if (meshes_[i] == RTC_INVALID_GEOMETRY_ID || !isNearEdge(i)) continue;
        if (!scene_->nextHit(rays[i], {}, hits[i])) hits[i] = ViewingProgress{}.best;
    }
}

}  // namespace tavora::studio
