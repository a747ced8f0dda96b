#pragma once

#include <ImathVec.h>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "studio/render/cache/cached_path.h"
#include "studio/render/cache/neighbour_visibility.h"
#include "studio/render/cache/visibility.h"
#include "studio/render/light/shadow_rays.h"
#include "studio/render/surface/shading_points.h"
#include "studio/render/trace/occlusion.h"
#include "studio/scene/lighting/light_sample.h"
#include "studio/scene/vectors.h"

namespace tavora::studio {

/// What is known of the lights at a point before any ray is traced.
struct PriorVisibility {
    const LightBits* neighbours = nullptr;  ///< as the pixels around saw them; null: nothing
    CachedHit cached;                       ///< the point's hit
};

/// The lights at a batch of shading points: what each brings to each point, and how much of
/// that arrives. find() works a light out for many points at once; what is asked for beyond
/// that is worked out point by point. One thread at a time.
///
/// A light behind both the polygon and its interpolated normal does not reach the side that
/// is seen: the surface itself is in the way.
class LightBatch {
  public:
    /// `scene` and `lights` must outlive it.
    LightBatch(const RayScene& scene, const LightSet& lights, std::size_t capacity);

    /// Begins with other points, of whose lights nothing is known but `priors`, an entry for
    /// each point. Both must stay as they are until the next call.
    void begin(ShadingPoints& points, std::span<const PriorVisibility> priors);

    /// Whether what becomes known of some point is cached.
    bool isCached() const { return haveCaches_; }

    /// Works a light out for the points of `ranges` that face it.
    void find(std::size_t light, std::span<const PointRange> ranges);

    /// What arrives of a light at a point: its direction as in LightSample and its colour,
    /// shadows counted in. False where it does not reach the point; the rest is then
    /// unspecified.
    bool illuminate(std::size_t light, std::size_t point, double direction[3], double color[3]) {
        const LightArrays& arrays = arrays_[light];
        const bool isReady = arrays.isBegun && arrays.visibilities[point].isKnown() &&
                             (arrays.isSampled.empty() || arrays.isSampled[point] != 0);
        if (!isReady && !workOut(light, point)) return false;
        const double visibility = arrays.visibilities[point].fraction();
        if (!(visibility > 0)) return false;
        const ResolvedLight& resolved = lights_->lights[light];
        if (arrays.isSampled.empty()) {
            writeVector(resolved.light->direction, direction);
            writeVector(resolved.color * visibility, color);
            return true;
        }
        writeVector({arrays.x[point], arrays.y[point], arrays.z[point]}, direction);
        writeVector(resolved.color * arrays.levels[point] * visibility, color);
        return true;
    }

    /// How far the point's shading normal faces the light: 1 straight, 0 and below not, or
    /// where the light is dark. Traces nothing.
    double cosine(std::size_t light, std::size_t point);

    /// How much of the light reaches the point; known once illuminate() was called.
    Visibility visibility(std::size_t light, std::size_t point) const {
        return arrays_[light].visibilities[point];
    }

    /// illuminate() at any position in the world, as it falls on the point's surface. Nothing
    /// is kept.
    bool illuminateElsewhere(std::size_t light, std::size_t point, const Imath::V3d& position,
                             double direction[3], double color[3]);

    std::uint64_t shadowRays() const { return shadowRays_; }

  private:
    /// What is known of one light, by point.
    struct LightArrays {
        bool isBegun = false;  ///< in this batch
        std::vector<Visibility> visibilities;
        // Of point and spot lights, as in PunctualSample; else empty:
        std::vector<std::uint8_t> isSampled;
        std::vector<double> x, y, z, distances, levels;
    };

    bool workOut(std::size_t light, std::size_t point);
    LightArrays& begun(std::size_t light);
    bool isDirectional(std::size_t light) const {
        return lights_->lights[light].light->kind == LightKind::Directional;
    }
    bool isShadowed(std::size_t light, const SceneMesh& mesh) const {
        return lights_->lights[light].castsShadow && mesh.surface->receivesShadows;
    }
    void sample(std::size_t light, const PointRange& range);
    void sampleOne(std::size_t light, std::size_t point);
    LightSample sampleOf(std::size_t light, std::size_t point) const;
    void findFacing(std::size_t light, const PointRange& range);
    void aimShadowRays(std::size_t light, const PointRange& range);
    bool needsRay(std::size_t light, std::size_t point, bool isShadowed);
    void addRays(std::size_t light, const PointRange& range);
    void addAreaRays(std::size_t light, const PointRange& range);
    void traceRays(std::size_t light);
    void traceAreaRays(std::size_t light);
    void set(std::size_t light, std::size_t point, Visibility visibility);
    Visibility traceOne(std::size_t light, std::size_t point);

    const RayScene* scene_;
    const LightSet* lights_;
    std::size_t capacity_;
    std::vector<LightArrays> arrays_;            ///< by light
    std::vector<std::uint8_t> mayEndOnSurface_;  ///< by light: something may be where it is
    ShadingPoints* points_ = nullptr;
    std::span<const PriorVisibility> priors_;
    bool haveCaches_ = false;
    bool haveNeighbours_ = false;
    Occlusion occlusion_;
    // By point, for the light at work:
    std::vector<std::int32_t> facing_;
    std::vector<float> rayX_, rayY_, rayZ_, rayEnds_;
    std::vector<double> rayLengths_;
    // The rays to be traced:
    std::vector<std::uint32_t> rayPoints_;
    std::vector<ShadowRays> areaRays_;  ///< with their points in `areaPoints_`
    std::vector<std::uint32_t> areaPoints_;
    std::uint64_t shadowRays_ = 0;
};

}  // namespace tavora::studio
