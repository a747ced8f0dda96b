#pragma once

#include <ImathVec.h>
#include <cstddef>

#include "studio/render/ray_scene.h"
#include "studio/render/surface_point.h"
#include "studio/scene/lighting/light_set.h"

namespace tavora::studio {

/// A place that a light reaches, shadows aside.
struct LitPlace {
    Imath::V3d position{0, 0, 0};        ///< world
    Imath::V3d direction{0, 0, -1};      ///< unit, the way the light's middle shines there
    double distance = 0;                 ///< to its middle; may be infinite
    const Imath::V3d* facing = nullptr;  ///< unit, towards the side that is lit; null: all sides
};

/// Whether anything can keep the light off a place on the surface, so that shadow rays
/// have to tell.
inline bool canBeShadowed(const ResolvedLight& light, const SurfacePoint& point) {
    return light.castsShadow && point.source().surface->receivesShadows;
}

/// Where shadow rays from a place on a surface start, and what they pass.
struct ShadowOrigin {
    Imath::V3d position{0, 0, 0};       ///< world
    double spot = 0;                    ///< as in Ray
    const SceneMesh* spared = nullptr;  ///< as in Ray

    /// A ray from there, as long as it goes nowhere.
    Ray ray() const;
};

ShadowOrigin shadowOrigin(const SurfacePoint& point);

/// Turns `ray`, which starts near `place`, to the light's middle, to end a little
/// before it. False where the light is too near for anything to be between.
bool turnToMiddle(const LitPlace& place, Ray& ray);

/// The shadow rays from one place to one light, one after the other, and the
/// share of its light that passes along them: one ray for a light without a
/// size. A light with one is seen by its points that the side faces, so that
/// the part of it under the horizon dims nothing: that the cosine does. Where
/// the first of them are all open or all shut, so are the others.
class ShadowRays {
  public:
    /// `base` says where rays start, how near, how wide, and what they pass.
    /// `light` and what `place` points to must outlive its use. False where the
    /// light is too near for anything to be between.
    bool aim(const Ray& base, const ResolvedLight& light, const LitPlace& place);

    /// The next ray to trace; false when the share is known.
    bool next(Ray& ray);
    /// What passes along it.
    void add(double share) {
        sum_ += share;
        ++count_;
    }

    /// Once next() returned false: 0..1.
    double share() const { return sum_ / static_cast<double>(count_); }

  private:
    bool isKnown() const;
    bool aimAt(const Imath::V3d& point, Ray& ray) const;

    Ray middle_;  ///< to the light's middle
    const ResolvedLight* light_ = nullptr;
    const Imath::V3d* facing_ = nullptr;
    std::size_t nextPoint_ = 0;
    std::size_t count_ = 0;
    double sum_ = 0;
};

}  // namespace tavora::studio
