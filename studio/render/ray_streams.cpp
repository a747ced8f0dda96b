#include "studio/render/ray_streams.h"

#include <algorithm>
#include <cmath>

namespace tavora::studio {
namespace {

/// Rays along a plane of axes, such as the face of a box in Embree's tree: those
/// exactly in it meet what the box holds or not by who their neighbours are.
bool runsAlongAxes(const RTCRay& ray) {
    constexpr float kSlight = 1e-6F;
    return std::abs(ray.dir_x) < kSlight || std::abs(ray.dir_y) < kSlight ||
           std::abs(ray.dir_z) < kSlight;
}

/// Which of the triangles at an edge or a corner is met differs in a stream by
/// rounding.
bool isNearEdge(const RTCHit& hit) {
    constexpr float kNear = 1e-5F;
    return std::min({hit.u, hit.v, 1.0F - hit.u - hit.v}) < kNear;
}

}  // namespace

void RayStreams::start(std::span<const Ray> rays) {
    progress_.resize(std::max(progress_.size(), rays.size()));
    viewing_.clear();
    shadows_.clear();
}

void RayStreams::traceAlone(unsigned id) {
    RayProgress& progress = progress_[id];
    progress.best = RayProgress{}.best;
    HitKey hit;
    if (scene_->nextHit(*progress.ray, {}, hit)) progress.best = hit;
}

void RayStreams::firstHits(std::span<const Ray> rays, std::span<HitKey> hits) {
    start(rays);
    for (std::size_t i = 0; i < rays.size(); ++i) {
        RTCRayHit query;
        query.ray = embreeRay(rays[i], static_cast<unsigned>(i));
        query.hit.geomID = RTC_INVALID_GEOMETRY_ID;
        progress_[i] = {};
        progress_[i].ray = &rays[i];
        if (runsAlongAxes(query.ray)) {
            traceAlone(query.ray.id);
        } else {
            viewing_.push_back(query);
        }
    }
    RayContext context = rayContext(*scene_, progress_.data(), RTC_INTERSECT_CONTEXT_FLAG_COHERENT);
    rtcIntersect1M(scene_->embree(), &context.embree, viewing_.data(),
                   static_cast<unsigned>(viewing_.size()), sizeof(RTCRayHit));
    for (const RTCRayHit& traced : viewing_) {
        if (traced.hit.geomID == RTC_INVALID_GEOMETRY_ID || !isNearEdge(traced.hit)) continue;
        traceAlone(traced.ray.id);
    }
    // Without a hit the best one is what it started as: infinitely far.
    for (std::size_t i = 0; i < rays.size(); ++i)
        hits[i] = progress_[i].best;
}

void RayStreams::transmittances(std::span<const Ray> rays, std::span<double> shares) {
    start(rays);
    for (std::size_t i = 0; i < rays.size(); ++i) {
        const RTCRay query = embreeRay(rays[i], static_cast<unsigned>(i));
        progress_[i] = {};
        progress_[i].ray = &rays[i];
        progress_[i].leavesClear = true;
        if (runsAlongAxes(query)) {
            shares[i] = scene_->transmittance(rays[i]);
        } else {
            shadows_.push_back(query);
        }
    }
    RayContext context = rayContext(*scene_, progress_.data(), RTC_INTERSECT_CONTEXT_FLAG_COHERENT);
    rtcOccluded1M(scene_->embree(), &context.embree, shadows_.data(),
                  static_cast<unsigned>(shadows_.size()), sizeof(RTCRay));
    for (const RTCRay& traced : shadows_) {
        const RayProgress& progress = progress_[traced.id];
        double& share = shares[traced.id];
        share = isStopped(traced) ? 0 : 1;
        if (share != 0 && progress.metClear) share = scene_->transmittance(*progress.ray);
    }
}

}  // namespace tavora::studio
