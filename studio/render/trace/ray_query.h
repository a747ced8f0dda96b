#pragma once

#include <cmath>
#include <cstdint>
#include <embree3/rtcore.h>
#include <limits>

#include "studio/render/trace/hit_order.h"
#include "studio/render/trace/ray_scene.h"

namespace tavora::studio {

/// Between which distances hits count. Embree's rays reach a little further at both ends,
/// as far as its distances may be off; hits there are judged by hitDistance().
struct RayLimits {
    float tMin = 0;
    float tMax = std::numeric_limits<float>::infinity();

    bool exist() const { return tMin > 0 || std::isfinite(tMax); }
    bool hold(float distance) const { return distance >= tMin && distance <= tMax; }
};

inline RayLimits limitsOf(const Ray& ray) {
    return {static_cast<float>(ray.tMin), static_cast<float>(ray.tMax)};
}

/// The search for one ray's next hit, which the filters of its hits bring on.
struct HitSearch {
    const Ray* ray = nullptr;
    RayLimits limits;
    HitKey after{};  ///< hits up to this one are passed
    /// If set, no hit counts, but the key of this one becomes `after`.
    const Hit* target = nullptr;
    /// The best hit so far.
    HitKey best{std::numeric_limits<float>::infinity(), 0, 0};
};

/// The same for the first hits of many rays at once, all without limits and equally wide.
/// Arrays have an entry for each ray, by its `id`.
struct FirstHitSearch {
    double footprint = 0;                ///< as in Ray
    double coneSpread = 0;               ///< as in Ray
    float* distances = nullptr;          ///< of the best hit so far, as Embree has it
    std::uint8_t* isDoubtful = nullptr;  ///< 1 where another hit may be as near

    double footprintAt(double distance) const { return footprint + coneSpread * distance; }
};

/// What the filters of a shadow ray's hits know of it, and what they find.
struct OcclusionState {
    RayLimits limits;
    double footprint = 0;   ///< as in Ray
    double coneSpread = 0;  ///< as in Ray
    const SceneMesh* excludedSelf = nullptr;
    std::int64_t opticalDepth = 0;  ///< as transmittanceOf() takes it
    /// In a stream a clear surface is only noted: Embree may hand over its triangles more
    /// than once there. How much light passes, a ray that is traced alone tells.
    bool skipsClear = false;
    bool hitClear = false;

    double footprintAt(double distance) const { return footprint + coneSpread * distance; }
};

inline OcclusionState occlusionState(const Ray& ray) {
    return {limitsOf(ray), ray.footprint, ray.coneSpread, ray.excludedSelf};
}

/// What Embree hands through to filters.
struct RayQuery {
    RTCIntersectContext embree;  // comes first: Embree's pointer to it is one to the whole
    const RayScene* scene;
    HitSearch* search;          ///< of a camera ray that is traced alone
    FirstHitSearch first;       ///< of other camera rays
    OcclusionState* occlusion;  ///< of shadow rays, by `id`
};

inline RayQuery rayQuery(const RayScene& scene, RTCIntersectContextFlags flags) {
    RayQuery query{};
    rtcInitIntersectContext(&query.embree);
    query.embree.flags = flags;
    query.scene = &scene;
    return query;
}

/// A component of a direction in single precision. Rays in a plane of two axes, such as the
/// face of a box in Embree's tree, hit what the box holds or miss it depending on which rays
/// are traced beside them: they are tilted by a millionth, which moves hits less than
/// rounding does.
inline float embreeComponent(double component) {
    constexpr double kSlight = 1e-6;
    const bool isFlat = std::abs(component) < kSlight;
    return static_cast<float>(isFlat ? std::copysign(kSlight, component) : component);
}
inline Imath::V3f embreeDirection(const Imath::V3d& direction) {
    return {embreeComponent(direction.x), embreeComponent(direction.y),
            embreeComponent(direction.z)};
}

/// Where Embree begins and ends to look, so that it hands over all hits within the limits.
inline float embreeTMin(const Ray& ray) {
    return surelyBefore(static_cast<float>(ray.tMin));
}
inline float embreeTMax(const Ray& ray) {
    return surelyBeyond(static_cast<float>(ray.tMax));
}

/// Fills `result` with `ray`, whose state is that of number `id`.
inline void setEmbreeRay(const Ray& ray, unsigned id, RTCRay& result) {
    const Imath::V3f direction = embreeDirection(ray.direction);
    result.org_x = static_cast<float>(ray.origin.x);
    result.org_y = static_cast<float>(ray.origin.y);
    result.org_z = static_cast<float>(ray.origin.z);
    result.tnear = embreeTMin(ray);
    result.dir_x = direction.x;
    result.dir_y = direction.y;
    result.dir_z = direction.z;
    result.time = 0;
    result.tfar = embreeTMax(ray);
    result.mask = ~0U;
    result.id = id;
    result.flags = 0;
}

/// Whether a shadow ray which was traced hit anything that stops light: Embree then moves
/// its end to minus infinity.
inline bool isOccluded(float tfar) {
    return tfar < 0;
}

}  // namespace tavora::studio
