#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "studio/render/light_arrivals.h"
#include "studio/render/ray_scene.h"
#include "studio/render/ray_streams.h"
#include "studio/render/sample_shader.h"
#include "studio/scene/light_levels.h"

namespace tavora::studio {

/// What many viewing rays meet first, and which lights shine there: traced
/// together, before any of it is shaded. One thread at a time.
class SampleBundle {
  public:
    /// Both must outlive it.
    SampleBundle(const RayScene& scene, const LightRig& lights);

    /// How many rays fit. Fewer than with few lights where there are many, so
    /// that it stays in the processor's cache.
    std::size_t room() const { return met_.size(); }

    /// Traces at most room() rays, which must outlive its use. `shader` says
    /// which surfaces take light.
    void trace(std::span<const Ray> rays, const SampleShader& shader);

    /// The first surface along a ray that is not wholly clear, or null.
    const MetSurface* met(std::size_t ray) const;
    /// Share of each light that reaches it; negative where that was not traced.
    std::span<const double> shares(std::size_t ray) const {
        return {&shares_[ray * lights_], lights_};
    }

    std::uint64_t viewingRays() const { return viewingRays_; }
    std::uint64_t shadowRays() const { return shadowRays_; }

  private:
    /// The ways from where a viewing ray ends to one light.
    struct Way {
        ShadowRays rays;
        std::uint32_t viewing = 0;  ///< where the viewing ray stands
    };
    using Beam = std::vector<Way>;
    void findSurfaces(std::span<const Ray> rays);
    void aimAtLights(const MetSurface& met, std::uint32_t ray, const SampleShader& shader);
    void follow(Beam& beam, std::size_t light);
    bool step(Beam& beam);

    const RayScene* scene_;
    std::size_t lights_;
    RayStreams streams_;
    LightArrivals arrivals_;
    std::vector<HitKey> hits_;
    std::vector<MetSurface> met_;
    std::vector<Beam> beams_;             ///< by light
    std::vector<double> shares_;          ///< by ray and light
    std::vector<Ray> shadows_;            ///< of a beam
    std::vector<std::uint32_t> walking_;  ///< ways in the beam that those are of
    std::vector<double> passed_;          ///< along them
    std::uint64_t viewingRays_ = 0;
    std::uint64_t shadowRays_ = 0;
};

}  // namespace tavora::studio
