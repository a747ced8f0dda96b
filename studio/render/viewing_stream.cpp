#include "studio/render/viewing_stream.h"

#include <algorithm>
#include <limits>

namespace tavora::studio {

/// Which of the triangles at an edge or a corner is met differs in a stream by
/// rounding.
bool ViewingStream::isNearEdge(std::size_t at) const {
    constexpr float kNear = 1e-5F;
    return std::min({u_[at], v_[at], 1.0F - u_[at] - v_[at]}) < kNear;
}

void ViewingStream::start(std::span<const Ray> rays) {
    for (std::size_t i = 0; i < rays.size(); ++i)
        rays_.set(i, rays[i]);
    std::fill_n(distances_.begin(), rays.size(), std::numeric_limits<float>::infinity());
    std::fill_n(areDoubtful_.begin(), rays.size(), 0);
    std::fill_n(meshes_.begin(), rays.size(), RTC_INVALID_GEOMETRY_ID);
    std::fill_n(instances_.begin(), rays.size(), RTC_INVALID_GEOMETRY_ID);
}

/// Embree leaves out normals that are null.
RTCRayHitNp ViewingStream::embree() {
    RTCRayHitNp query{};
    query.ray = rays_.embree();
    query.hit.u = u_.data();
    query.hit.v = v_.data();
    query.hit.primID = triangles_.data();
    query.hit.geomID = meshes_.data();
    query.hit.instID[0] = instances_.data();
    return query;
}

void ViewingStream::firstHits(std::span<const Ray> rays, std::span<Hit> hits) {
    start(rays);
    RayContext context = rayContext(*scene_, RTC_INTERSECT_CONTEXT_FLAG_COHERENT);
    context.first = {rays.data(), distances_.data(), areDoubtful_.data()};
    const RTCRayHitNp query = embree();
    rtcIntersectNp(scene_->embree(), &context.embree, &query, static_cast<unsigned>(rays.size()));
    for (std::size_t i = 0; i < rays.size(); ++i) {
        const bool meets = meshes_[i] != RTC_INVALID_GEOMETRY_ID;
        if (areDoubtful_[i] != 0 || limitsOf(rays[i]).exist() || (meets && isNearEdge(i))) {
            scene_->nextHit(rays[i], {}, hits[i]);
        } else {
            hits[i] = hitOf(meshes_[i], instances_[i], triangles_[i]);
        }
    }
}

}  // namespace tavora::studio
