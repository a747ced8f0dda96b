#pragma once

#include <ImathVec.h>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "studio/render/cache/cached_path.h"
#include "studio/render/cache/neighbour_visibility.h"
#include "studio/render/image/radiance.h"
#include "studio/render/material/surface_set.h"
#include "studio/render/shade/sample_shader.h"
#include "studio/render/shade/surface_finder.h"
#include "studio/render/shade/worker_shaders.h"
#include "studio/render/surface/facet.h"
#include "studio/render/trace/camera_rays.h"
#include "studio/render/trace/first_hits.h"
#include "studio/render/trace/ray_scene.h"
#include "studio/scene/lighting/light_set.h"

namespace tavora::studio {

/// A position in a picture where a sample is taken.
struct CameraSample {
    Imath::V2d position;  ///< in pixels, from the upper left corner
    /// What is known of the lights about there; null: nothing.
    const NeighbourVisibility* neighbours = nullptr;
};

/// The first surface along a camera ray that is not wholly transparent.
struct FirstSurface {
    std::uint32_t mesh = MeshVisibility::kNone;  ///< in SceneIndex::meshes(); kNone: none
    float distance = 0;                          ///< along the ray
    Imath::V3f normal{0, 0, 0};  ///< interpolated, unit, on the side that is seen, in the world
};

/// What became of a camera sample.
struct ShadedSample {
    Radiance radiance;
    FirstSurface first;
    LightBits lights;     ///< as the first surface saw those that its shader asked for
    SurfaceSet surfaces;  ///< on whose settings it depends
};

/// Turns camera samples into shaded samples, many at once: the core of every picture. Camera
/// rays find their first hits; the hits are lit, then shaded; and where surfaces let light
/// through, the rays go on to their next hits, wave after wave. One thread at a time, with
/// its ServiceBinding in place.
class CameraSampler {
  public:
    /// All must outlive it.
    CameraSampler(const RayScene& scene, const LightSet& lights, const WorkerShaders& shaders);

    /// `results[i]` becomes what `camera` sees at `samples[i]`. `paths` is empty, or has an
    /// entry for each sample: what is cached of it, which is brought up to date. It costs least
    /// where neighbours in the picture are next to each other. No result depends on the others.
    void sample(const CameraRays& camera, std::span<const CameraSample> samples,
                std::span<CachedPath> paths, std::span<ShadedSample> results);

    /// How many samples are worked on together: so many that they share their way through the
    /// scene, so few that what belongs to them stays in the processor's cache.
    static constexpr std::size_t kBatch = 256;

    std::uint64_t cameraRays() const { return cameraRays_ + finder_.rays() + shader_.tracedRays(); }
    std::uint64_t shadowRays() const { return shader_.shadowRays(); }
    std::uint64_t evaluations() const { return shader_.evaluations(); }

  private:
    /// A ray that goes on, with its next hit.
    struct ActiveRay {
        std::uint32_t ray;
        Hit hit;
        CachedHit cached;
    };
    /// Surfaces over each other along a ray, front to back, in linear light.
    struct Layers {
        Imath::V3d color{0, 0, 0};
        double transmittance = 1;  ///< of all of them
    };

    void sampleBatch(const CameraRays& camera, std::span<const CameraSample> samples,
                     std::span<CachedPath> paths, std::span<ShadedSample> results);
    const Ray& ray(std::uint32_t number);
    void findFirstHits(std::size_t count, std::span<CachedPath> paths);
    void skipTransparent();
    void sortByFacet();
    void fillBatch(std::span<const CameraSample> samples, bool isFirst);
    void shadeBatch(std::span<ShadedSample> results, bool isFirst);
    void toLight();
    void composite(std::span<ShadedSample> results, bool isFirst);
    bool addLayer(std::size_t point, ShadedSample& result, bool isFirst);
    static Radiance radianceOf(const Layers& layers);

    const RayScene* scene_;
    SampleShader shader_;
    SurfaceFinder finder_;
    FacetCache facets_;
    FirstHits firstHits_;
    bool hasTransparent_ = false;  ///< some surface may be wholly transparent somewhere
    std::vector<double> x_;        ///< of the samples, as the next
    std::vector<double> y_;
    CameraRayBatch rays_;
    Ray ray_;                             ///< one of them
    std::vector<Hit> hits_;               ///< by ray
    std::vector<CachedHit> cached_;       ///< by ray: its first hit
    std::vector<std::uint32_t> unknown_;  ///< rays whose first hit has to be traced
    std::vector<ActiveRay> active_;       ///< of this wave
    std::vector<ActiveRay> next_;         ///< of the next
    // For sorting:
    std::vector<std::uint32_t> facetOf_;    ///< by active ray: number in `facets_`
    std::vector<std::uint32_t> hitFacets_;  ///< of this wave, each once
    std::vector<std::uint32_t> countOf_;    ///< by facet: active rays that hit it
    std::vector<std::uint32_t> order_;      ///< active rays, by mesh and facet
    // By point of the batch:
    std::vector<std::uint32_t> rayOf_;
    std::vector<Appearance> appearances_;
    std::vector<std::uint32_t> lightOf_;  ///< where in `light_` its colour is, as light
    std::vector<double> encoded_;         ///< colours that differ, three numbers each
    std::vector<double> light_;           ///< the same, scene-linear
    std::vector<Layers> layers_;          ///< by ray, once a surface lets light through
    std::uint64_t cameraRays_ = 0;
};

}  // namespace tavora::studio
