#pragma once

#include <ImathVec.h>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <utility>
#include <vector>

#include "host/sample.h"
#include "studio/render/cache/cached_path.h"
#include "studio/render/light/light_batch.h"
#include "studio/render/material/material.h"
#include "studio/render/material/surface_set.h"
#include "studio/render/shade/sample_record.h"
#include "studio/render/shade/surface_finder.h"
#include "studio/render/shade/worker_shaders.h"
#include "studio/render/surface/shading_points.h"
#include "studio/render/trace/camera_rays.h"
#include "studio/render/trace/ray_scene.h"
#include "studio/scene/lighting/light_set.h"

namespace tavora::studio {

/// How a surface shows along a ray, display-referred.
struct Appearance {
    Imath::V3d color{0, 0, 0};
    double transparency = 0;  ///< 0..1
};

/// Hits of camera rays that are lit and shaded together. All arrays are by point.
struct HitBatch {
    HitBatch(const RayScene& scene, const LightSet& lightSet, std::size_t capacity);

    void clear();
    /// Adds the hit of `ray` on `facet`.
    SurfacePoint& add(const RayScene& scene, const Facet& facet, const Ray& ray, const Hit& hit,
                      const PriorVisibility& prior);

    ShadingPoints points;
    std::vector<Hit> hits;
    std::vector<BaseColor> colors;
    std::vector<PriorVisibility> priors;
    LightBatch lights;
};

/// Rays that shaders trace may hit surfaces whose shaders trace again, so deep.
inline constexpr std::size_t kDeepestTrace = 8;

/// Shades hits for one worker: fills the module's record, lets the surface's shader work on
/// it, answers its callbacks, and adds the light that the surface scatters. Used on one
/// thread, with its ServiceBinding in place.
class SampleShader {
  public:
    /// Batches of camera hits have room for `capacity`. All must outlive it.
    SampleShader(const RayScene& scene, const LightSet& lights, const WorkerShaders& shaders,
                 std::size_t capacity);
    ~SampleShader();
    SampleShader(const SampleShader&) = delete;
    SampleShader& operator=(const SampleShader&) = delete;

    /// To be filled with hits, then lit by light(), then shaded one by one.
    HitBatch& batch();

    /// Works out the lights at the batch's points that their shaders are likely to ask for:
    /// those that samples of the surface asked for before. Where caches want to know, all.
    void light();

    /// Shades a point of the batch, which ray `ray` of `rays` hits; these must stay as they are
    /// meanwhile.
    Appearance shade(std::size_t point, const CameraRayBatch& rays, std::size_t ray);

    /// What the last shade() saw of the lights that it asked for: this depends on nothing but
    /// the sample.
    LightBits seenLights() const;

    /// The surfaces shaded since the last call, those that shaders' rays hit included: what
    /// was shaded depends on the settings of no others.
    SurfaceSet takeShaded() { return std::exchange(shaded_, {}); }

    std::uint64_t evaluations() const { return evaluations_; }
    std::uint64_t shadowRays() const;
    /// That shaders traced.
    std::uint64_t tracedRays() const { return nested_.rays(); }

  private:
    struct Level;

    void light(Level& level);
    Appearance shade(Level& level, std::size_t point, const Viewpoint& from, HostSample& record);
    void fill(Level& level, const Viewpoint& from, const SampleValues& values,
              HostSample& record) const;
    void evaluate(Level& level, const ActiveShader& active, HostSample& record,
                  SampleValues& values);
    std::uint8_t* askedLights(int surface) {
        return asked_.data() + static_cast<std::size_t>(surface) * lights_->lights.size();
    }

    // The callbacks of records. They carry no data: they reach the SampleShader that works on
    // their thread.
    static int illuminate(HostItemId light, const double position[3], double direction[3],
                          double color[3]);
    static double traceAndShade(const double position[3], const double direction[3],
                                HostSample* hit);
    double trace(const Viewpoint& from, HostSample& hit);
    double traceAnew(const Level& outer, const Viewpoint& from, HostSample& hit);

    const RayScene* scene_;
    const LightSet* lights_;
    const WorkerShaders* shaders_;
    std::vector<std::unique_ptr<Level>> levels_;  ///< the camera's hits, then nested ones
    std::size_t depth_ = 0;                       ///< of the sample being shaded
    Level* level_ = nullptr;                      ///< there
    SurfaceFinder nested_;                        ///< of the rays that shaders trace
    SurfaceSet shaded_;
    std::vector<std::uint8_t> asked_;  ///< by surface and light: whether ever
    std::vector<PointRange> asking_;   ///< points that ask for the light at work
    std::uint64_t evaluations_ = 0;
};

}  // namespace tavora::studio
