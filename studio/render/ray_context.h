#pragma once

#include <cmath>
#include <cstdint>
#include <embree3/rtcore.h>
#include <limits>

#include "studio/render/hit_order.h"
#include "studio/render/ray_scene.h"

namespace tavora::studio {

/// Between which distances hits count, as Embree's rays have them but without room
/// for its doubts.
struct Limits {
    float nearest = 0;
    float farthest = std::numeric_limits<float>::infinity();

    bool exist() const { return nearest > 0 || std::isfinite(farthest); }
    bool hold(float distance) const { return distance >= nearest && distance <= farthest; }
};

inline Limits limitsOf(const Ray& ray) {
    return {static_cast<float>(ray.nearest), static_cast<float>(ray.farthest)};
}

/// What the filter of viewing rays' hits knows of a ray that goes alone, and what
/// it finds out.
struct ViewingProgress {
    const Ray* ray = nullptr;
    Limits limits;
    HitKey after{};  ///< hits up to this one are passed
    /// Instead of hits, find out the key of this one, which becomes `after`.
    const Hit* seeks = nullptr;
    /// The hit kept so far.
    HitKey best{std::numeric_limits<float>::infinity(), 0, 0};
};

/// The same of many unlimited rays from their start, by their `id`. Room enough is
/// the caller's.
struct FirstHits {
    const Ray* rays = nullptr;
    float* distances = nullptr;           ///< of the hit kept so far, by Embree
    std::uint8_t* areDoubtful = nullptr;  ///< 1 where another may be as near
};

/// What the filter of shadow rays' hits knows of one ray, and what it finds out.
struct ShadowProgress {
    Limits limits;
    double spot = 0;    ///< as in Ray
    double spread = 0;  ///< as in Ray
    const SceneMesh* spared = nullptr;
    std::int64_t darkening = 0;  ///< as lightLeft() takes it
    /// In a stream: a clear surface was met, and left out. How much passes all of
    /// them, only a ray alone meets each of them once to tell.
    bool leavesClear = false;
    bool metClear = false;

    double spotAt(double distance) const { return spot + spread * distance; }
};

inline ShadowProgress shadowProgress(const Ray& ray) {
    return {limitsOf(ray), ray.spot, ray.spread, ray.spared};
}

/// What Embree hands through to filters.
struct RayContext {
    RTCIntersectContext embree;  // comes first: Embree's pointer stands for the whole
    const RayScene* scene;
    ViewingProgress* viewing;  ///< of a viewing ray alone
    FirstHits first;           ///< of others
    ShadowProgress* shadows;   ///< by the `id` of Embree's rays
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

/// Where Embree is to begin to look, and to end: filters judge what is near.
inline float embreeNearest(const Ray& ray) {
    return surelyBefore(static_cast<float>(ray.nearest));
}
inline float embreeFarthest(const Ray& ray) {
    return surelyBeyond(static_cast<float>(ray.farthest));
}

/// Fills `result` with `ray`, whose progress stands at `id`.
inline void setEmbreeRay(const Ray& ray, unsigned id, RTCRay& result) {
    const Imath::V3f direction = embreeDirection(ray.direction);
    result.org_x = static_cast<float>(ray.origin.x);
    result.org_y = static_cast<float>(ray.origin.y);
    result.org_z = static_cast<float>(ray.origin.z);
    result.tnear = embreeNearest(ray);
    result.dir_x = direction.x;
    result.dir_y = direction.y;
    result.dir_z = direction.z;
    result.time = 0;
    result.tfar = embreeFarthest(ray);
    result.mask = ~0U;
    result.id = id;
    result.flags = 0;
}

/// Whether a shadow ray which was traced met anything solid, by where it ends.
inline bool isStoppedAt(float farthest) {
    return farthest < 0;
}

}  // namespace tavora::studio
