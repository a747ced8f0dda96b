#include "studio/render/viewing_stream.h"

#include <algorithm>

namespace tavora::studio {
namespace {

/// Which of the triangles at an edge or a corner is met differs in a stream by
/// rounding.
bool isNearEdge(const RTCHit& hit) {
    constexpr float kNear = 1e-5F;
    return std::min({hit.u, hit.v, 1.0F - hit.u - hit.v}) < kNear;
}

}  // namespace

void ViewingStream::start(std::span<const Ray> rays) {
    for (std::size_t i = 0; i < rays.size(); ++i) {
        setEmbreeRay(rays[i], static_cast<unsigned>(i), queries_[i].ray);
        queries_[i].hit.geomID = RTC_INVALID_GEOMETRY_ID;
        progress_[i] = {&rays[i]};
    }
}

void ViewingStream::firstHits(std::span<const Ray> rays, std::span<HitKey> hits) {
    start(rays);
    RayContext context = rayContext(*scene_, RTC_INTERSECT_CONTEXT_FLAG_COHERENT);
    context.viewing = progress_.data();
    rtcIntersect1M(scene_->embree(), &context.embree, queries_.data(),
                   static_cast<unsigned>(rays.size()), sizeof(RTCRayHit));
    for (std::size_t i = 0; i < rays.size(); ++i) {
        // Without a hit the best one is what it started as: infinitely far.
        hits[i] = progress_[i].best;
        const RTCHit& hit = queries_[i].hit;
        if (hit.geomID == RTC_INVALID_GEOMETRY_ID || !isNearEdge(hit)) continue;
        if (!scene_->nextHit(rays[i], {}, hits[i])) hits[i] = ViewingProgress{}.best;
    }
}

}  // namespace tavora::studio
