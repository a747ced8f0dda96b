#pragma once

#include <cmath>
#include <cstdint>
#include <embree3/rtcore.h>
#include <limits>

#include "studio/render/ray_scene.h"

namespace tavora::studio {

/// What the filter of viewing rays' hits knows of one ray, and what it finds out.
struct ViewingProgress {
    const Ray* ray = nullptr;
    HitKey after{};  ///< hits up to this one are passed
    /// The hit kept so far.
    HitKey best{std::numeric_limits<float>::infinity(), 0, 0};
};

/// What the filter of shadow rays' hits knows of one ray, and what it finds out.
struct ShadowProgress {
    double spot = 0;    ///< as in Ray
    double spread = 0;  ///< as in Ray
    const SceneMesh* spared = nullptr;
    std::int64_t darkening = 0;  ///< -log2 of the light left
    /// In a stream: a clear surface was met, and left out. How much passes all of
    /// them, only a ray alone meets each of them once to tell.
    bool leavesClear = false;
    bool metClear = false;
};

inline ShadowProgress shadowProgress(const Ray& ray) {
    return {ray.spot, ray.spread, ray.spared};
}

/// What Embree hands through to filters.
struct RayContext {
    RTCIntersectContext embree;  // comes first: Embree's pointer stands for the whole
    const RayScene* scene;
    ViewingProgress* viewing;  ///< by the `id` of Embree's rays, as are:
    ShadowProgress* shadows;
};

inline RayContext rayContext(const RayScene& scene, RTCIntersectContextFlags flags) {
    RayContext context{};
    rtcInitIntersectContext(&context.embree);
    context.embree.flags = flags;
    context.scene = &scene;
    return context;
}

/// A direction in single precision. Rays in a plane of axes, such as the face of
/// a box in Embree's tree, meet what the box holds or not by who their neighbours
/// are: they are tilted by a millionth, which moves hits less than rounding does.
inline Imath::V3f embreeDirection(const Imath::V3d& direction) {
    constexpr double kSlight = 1e-6;
    const auto tilted = [](double component) {
        const bool isFlat = std::abs(component) < kSlight;
        return static_cast<float>(isFlat ? std::copysign(kSlight, component) : component);
    };
    return {tilted(direction.x), tilted(direction.y), tilted(direction.z)};
}

/// Fills `result` with `ray`, whose progress stands at `id`.
inline void setEmbreeRay(const Ray& ray, unsigned id, RTCRay& result) {
    const Imath::V3f direction = embreeDirection(ray.direction);
    result.org_x = static_cast<float>(ray.origin.x);
    result.org_y = static_cast<float>(ray.origin.y);
    result.org_z = static_cast<float>(ray.origin.z);
    result.tnear = static_cast<float>(ray.nearest);
    result.dir_x = direction.x;
    result.dir_y = direction.y;
    result.dir_z = direction.z;
    result.time = 0;
    result.tfar = static_cast<float>(ray.farthest);
    result.mask = ~0U;
    result.id = id;
    result.flags = 0;
}

/// Whether a shadow ray which was traced met anything solid, by where it ends.
inline bool isStoppedAt(float farthest) {
    return farthest < 0;
}

}  // namespace tavora::studio
