#include "studio/render/trace/first_hits.h"

#include <algorithm>
#include <limits>

namespace tavora::studio {
namespace {

TAVORA_VECTOR_LOOPS
void toSingle(const double* __restrict from, std::size_t count, float* __restrict to) {
    for (std::size_t i = 0; i < count; ++i)
        to[i] = static_cast<float>(from[i]);
}

TAVORA_VECTOR_LOOPS
void toEmbreeComponents(const double* __restrict from, std::size_t count, float* __restrict to) {
    for (std::size_t i = 0; i < count; ++i)
        to[i] = embreeComponent(from[i]);
}

}  // namespace

FirstHits::FirstHits(const RayScene& scene, std::size_t capacity)
    : scene_(&scene),
      rays_(capacity),
      distances_(capacity),
      isDoubtful_(capacity),
      u_(capacity),
      v_(capacity),
      meshes_(capacity),
      instances_(capacity),
      triangles_(capacity) {}

/// Which of the triangles at an edge or a corner a ray hits depends on the rays beside it.
bool FirstHits::isNearEdge(std::size_t at) const {
    constexpr float kNear = 1e-5F;
    return std::min({u_[at], v_[at], 1.0F - u_[at] - v_[at]}) < kNear;
}

void FirstHits::load(const CameraRayBatch& rays, std::span<const std::uint32_t> numbers) {
    constexpr float kEndless = std::numeric_limits<float>::infinity();
    const std::size_t count = numbers.size();
    const RTCRayNp& to = rays_.embree();
    const bool areAll = count > 0 && numbers.back() == count - 1;
    if (areAll) {
        toSingle(rays.origins.x.data(), count, to.org_x);
        toSingle(rays.origins.y.data(), count, to.org_y);
        toSingle(rays.origins.z.data(), count, to.org_z);
        toEmbreeComponents(rays.directions.x.data(), count, to.dir_x);
        toEmbreeComponents(rays.directions.y.data(), count, to.dir_y);
        toEmbreeComponents(rays.directions.z.data(), count, to.dir_z);
        std::fill_n(to.tnear, count, 0.0F);
        std::fill_n(to.tfar, count, kEndless);
    } else {
        for (std::size_t i = 0; i < count; ++i) {
            rays_.setOrigin(i, Imath::V3f(rays.origins[numbers[i]]));
            rays_.setDirection(i, embreeDirection(rays.directions[numbers[i]]), 0, kEndless);
        }
    }
    std::fill_n(distances_.begin(), count, kEndless);
    std::fill_n(isDoubtful_.begin(), count, std::uint8_t{0});
    std::fill_n(meshes_.begin(), count, RTC_INVALID_GEOMETRY_ID);
    std::fill_n(instances_.begin(), count, RTC_INVALID_GEOMETRY_ID);
}

/// Embree leaves out normals that are null.
RTCRayHitNp FirstHits::embree() {
    RTCRayHitNp query{};
    query.ray = rays_.embree();
    query.hit.u = u_.data();
    query.hit.v = v_.data();
    query.hit.primID = triangles_.data();
    query.hit.geomID = meshes_.data();
    query.hit.instID[0] = instances_.data();
    return query;
}

void FirstHits::find(const CameraRayBatch& rays, std::span<const std::uint32_t> numbers,
                     std::span<Hit> hits) {
    if (numbers.empty()) return;
    load(rays, numbers);
    RayQuery query = rayQuery(*scene_, RTC_INTERSECT_CONTEXT_FLAG_COHERENT);
    query.first = {rays.footprint, rays.coneSpread, distances_.data(), isDoubtful_.data()};
    const RTCRayHitNp rayHits = embree();
    rtcIntersectNp(scene_->embree(), &query.embree, &rayHits,
                   static_cast<unsigned>(numbers.size()));
    for (std::size_t i = 0; i < numbers.size(); ++i) {
        Hit& hit = hits[numbers[i]];
        const bool hasHit = meshes_[i] != RTC_INVALID_GEOMETRY_ID;
        if (isDoubtful_[i] != 0 || (hasHit && isNearEdge(i))) {
            scene_->nextHit(rays.ray(numbers[i]), {}, hit);
        } else {
            hit = hitOf(meshes_[i], instances_[i], triangles_[i]);
        }
    }
}

}  // namespace tavora::studio
