#pragma once

#include <cstdint>
#include <embree3/rtcore.h>
#include <limits>

#include "studio/render/ray_scene.h"

namespace tavora::studio {

/// What the filters of hits know of one ray, and what they find out.
struct RayProgress {
    const Ray* ray = nullptr;
    HitKey after{};  ///< of viewing rays: hits up to this one are passed
    /// Of viewing rays: the hit kept so far.
    HitKey best{std::numeric_limits<float>::infinity(), 0, 0};
    std::int64_t darkening = 0;  ///< of shadow rays: -log2 of the light left
    /// Of shadow rays in a stream: a clear surface was met, and left out. How
    /// much passes all of them, only a ray alone meets each of them once to tell.
    bool leavesClear = false;
    bool metClear = false;
};

/// What Embree hands through to filters.
struct RayContext {
    RTCIntersectContext embree;  // comes first: Embree's pointer stands for the whole
    const RayScene* scene;
    RayProgress* rays;  ///< by the `id` of Embree's rays
};

inline RayContext rayContext(const RayScene& scene, RayProgress* rays,
                             RTCIntersectContextFlags flags) {
    RayContext context{};
    rtcInitIntersectContext(&context.embree);
    context.embree.flags = flags;
    context.scene = &scene;
    context.rays = rays;
    return context;
}

/// `ray` in single precision; its progress stands at `id`.
inline RTCRay embreeRay(const Ray& ray, unsigned id) {
    RTCRay result{};
    result.org_x = static_cast<float>(ray.origin.x);
    result.org_y = static_cast<float>(ray.origin.y);
    result.org_z = static_cast<float>(ray.origin.z);
    result.dir_x = static_cast<float>(ray.direction.x);
    result.dir_y = static_cast<float>(ray.direction.y);
    result.dir_z = static_cast<float>(ray.direction.z);
    result.tnear = static_cast<float>(ray.nearest);
    result.tfar = static_cast<float>(ray.farthest);
    result.mask = ~0U;
    result.id = id;
    return result;
}

/// Whether a shadow ray which was traced met anything solid.
inline bool isStopped(const RTCRay& traced) {
    return traced.tfar < 0;
}

}  // namespace tavora::studio
