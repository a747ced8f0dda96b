#pragma once

#include <ImathVec.h>
#include <cstddef>
#include <cstdint>

#include "studio/render/trace/ray_scene.h"
#include "studio/scene/lighting/light_sample.h"

namespace tavora::studio {

/// A shadow ray ends by so much of its length before the light.
inline constexpr double kBeforeLight = 1 - 1e-6;

/// The shadow rays from one position to one light, one after the other, and the visibility
/// that follows: one ray to a light without a size. An area light is seen by those of its
/// points that the lit side faces, so that the part of it below the horizon dims nothing:
/// that the cosine does. Where nothing or everything blocks the first kAreaProbes of them,
/// the others are taken to be alike.
class ShadowRays {
  public:
    /// `start` has the rays' origin, near `position`, their least distance, footprint and
    /// excluded surface. `sample` is the light at `position`. `facing` is the unit normal of
    /// the lit side; null: light counts from all sides. What is given by reference must
    /// outlive its use, `sample` aside. False where the light is too near for anything to be
    /// between: then it is visible.
    bool begin(const Ray& start, const ResolvedLight& light, const Imath::V3d& position,
               const LightSample& sample, const Imath::V3d* facing);

    /// The next ray to trace; false when the visibility is known.
    bool next(Ray& ray);
    /// What passes along it, 0..1.
    void add(double transmittance) {
        sum_ += transmittance;
        ++count_;
    }

    /// Once next() returned false: 0..1.
    double visibility() const { return sum_ / static_cast<double>(count_); }

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

/// The visibility of a light from `position`, arguments as for ShadowRays::begin(). Adds the
/// rays it traced to `rayCount`.
double traceVisibility(const RayScene& scene, const Ray& start, const ResolvedLight& light,
                       const Imath::V3d& position, const LightSample& sample,
                       const Imath::V3d* facing, std::uint64_t& rayCount);

}  // namespace tavora::studio
