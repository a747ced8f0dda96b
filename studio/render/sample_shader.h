#pragma once

#include <ImathVec.h>
#include <cstdint>
#include <memory>
#include <span>
#include <utility>
#include <vector>

#include "host/sample.h"
#include "studio/render/kept_paths.h"
#include "studio/render/known_shadows.h"
#include "studio/render/lane_shaders.h"
#include "studio/render/light_arrivals.h"
#include "studio/render/ray_scene.h"
#include "studio/render/sample_record.h"
#include "studio/render/surface_point.h"
#include "studio/render/surface_set.h"
#include "studio/render/surface_traits.h"
#include "studio/scene/lighting/light_set.h"

namespace tavora::studio {

/// How a surface shows along a ray, display-referred.
struct Appearance {
    Imath::V3d color{0, 0, 0};
    double transparency = 0;  ///< 0..1
};

/// A surface that a viewing ray meets, before it is shaded.
struct MetSurface {
    Hit hit;  ///< none: nothing is met
    SurfacePoint point;
    OwnColor own;
};

/// Fills the rest of `met` where `ray` hits `met.hit`, which is on `facet`. False
/// when the surface is wholly clear there. `facet` must outlive `met`.
bool meet(const RayScene& scene, const Facet& facet, const Ray& ray, MetSurface& met);

/// Rays that shaders trace may meet surfaces whose shaders trace again, so deep.
inline constexpr std::size_t kDeepestTrace = 8;

/// Shades samples for one render thread: fills the record, lets the surface's
/// shader work on it, answers its callbacks, adds what light the surface
/// scatters. Used on one thread, with its ServiceBinding in place. Allocates
/// nothing once made.
class SampleShader {
  public:
    /// All must outlive it.
    SampleShader(const RayScene& scene, const LightSet& lights, const LaneShaders& shaders);
    ~SampleShader();
    SampleShader(const SampleShader&) = delete;
    SampleShader& operator=(const SampleShader&) = delete;

    /// Before the first call for a viewing ray: what is known of its hits, and
    /// is to be kept. Without, nothing is kept.
    void follow(const KeptPath& path);

    /// Shades the first surface along `ray` after the hit `after` that is not
    /// wholly clear where it is hit, and says in `hit` which one it was.
    /// False when there is none.
    bool shadeNext(const Ray& ray, const Hit& after, Hit& hit, Appearance& appearance);

    /// Shades what shadeNext() along `ray` would, found before, with what is
    /// known of the lights there.
    Appearance shadeMet(const Ray& ray, const MetSurface& met, const KnownLights& lights);

    /// Whether shading it takes light at all.
    bool takesLight(const MetSurface& met) const {
        return met.own.diffuse != 0 || shaders_->of(met.point.surfaceIndex()).shader != nullptr;
    }

    /// By light, 1 where samples of the surface asked for it so far, so that the next
    /// is likely to: shaders that work with a few of many lights name theirs.
    const std::uint8_t* askedLights(int surface) const {
        return asked_.data() + firstAsked(surface);
    }

    /// What the last shadeNext() that found something asked of the lights, or
    /// shadeMet(): LightArrivals::met().
    LightsMet lightsMet() const;

    /// Where the last shadeNext() that found something did, or shadeMet().
    const SurfacePoint& point() const;

    /// The surfaces shaded since the last call, those that shaders' rays met
    /// included: what was shaded depends on the settings of no others.
    SurfaceSet takeShaded() { return std::exchange(shaded_, {}); }

    std::uint64_t evaluations() const { return evaluations_; }
    std::uint64_t viewingRays() const { return viewingRays_; }  ///< and those that shaders traced
    std::uint64_t shadowRays() const;

  private:
    struct Level;

    bool nextHit(Level& level, const Hit& after);
    bool findVisible(Level& level, Hit after);
    OwnColor findOwnColor(const Level& level);
    Appearance shade(Level& level, const Viewpoint& from, const KnownLights& lights,
                     HostSample& record);
    void fill(Level& level, const Viewpoint& from, const SampleValues& values,
              HostSample& record) const;
    void evaluate(Level& level, const ActiveShader& active, HostSample& record,
                  SampleValues& values);
    /// Where in `asked_` the lights of a surface begin.
    std::size_t firstAsked(int surface) const {
        return static_cast<std::size_t>(surface) * lights_->lights.size();
    }

    /// The callbacks of records reach the shader that works on their thread.
    static int illuminate(HostItemId light, const double position[3], double direction[3],
                          double color[3]);
    static double traceAndShade(const double position[3], const double direction[3],
                                HostSample* hit);
    double trace(const Viewpoint& from, HostSample& hit);
    double traceAnew(const Level& outer, const Viewpoint& from, HostSample& hit);

    const RayScene* scene_;
    const LightSet* lights_;
    const LaneShaders* shaders_;
    std::vector<std::unique_ptr<Level>> levels_;  ///< the camera's sample, then nested ones
    std::size_t depth_ = 0;                       ///< of the sample being shaded
    Level* level_ = nullptr;                      ///< there
    KeptPath path_;                               ///< of the camera's sample
    SurfaceSet shaded_;
    std::vector<std::uint8_t> asked_;  ///< by surface and light: whether ever
    std::uint64_t evaluations_ = 0;
    std::uint64_t viewingRays_ = 0;
};

}  // namespace tavora::studio
