#pragma once

#include <atomic>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <span>
#include <vector>

#include "studio/render/cache/neighbour_visibility.h"
#include "studio/render/image/picture.h"
#include "studio/render/options.h"
#include "studio/render/sampling/adaptive_sampler.h"
#include "studio/render/sampling/tile_edges.h"
#include "studio/render/shade/camera_sampler.h"
#include "studio/render/shade/worker_shaders.h"
#include "studio/render/trace/camera_rays.h"
#include "studio/render/trace/ray_scene.h"
#include "studio/scene/lighting/light_set.h"

namespace tavora::studio {

/// What all workers of one render read.
struct RenderJob {
    const RayScene& scene;
    const LightSet& lights;
    const SurfaceShaders& shading;
    const std::filesystem::path& module;
    const RenderOptions& options;
    CameraRays camera;
    std::vector<std::vector<Imath::V2d>> patterns;  ///< as patternsOf() gives them

    /// Positions of a pixel's samples, in it.
    std::span<const Imath::V2d> positionsIn(int x, int y) const {
        return patterns[static_cast<std::size_t>(x + y) % patterns.size()];
    }
    std::size_t samples() const { return patterns.front().size(); }  ///< of a pixel, at most
};

/// What one worker of a final render works with. Its thread alone uses it.
class RenderWorker {
  public:
    /// Only the `first` worker passes on what its module says about settings. `shaders` are
    /// those of an earlier render of the same shading, or null; afterwards the worker's.
    /// `shared` are used instead where the options want one module copy for all. `job` must
    /// outlive it. Throws Error, Fault::Module.
    RenderWorker(const RenderJob& job, bool isFirst, std::shared_ptr<WorkerShaders>& shaders,
                 const std::shared_ptr<WorkerShaders>& shared);

    /// Renders the pixels of a tile with all samples. Throws RenderStopped soon after `stop`
    /// is set; the tile is then incomplete.
    void renderTile(const PixelBox& tile, const std::atomic<bool>* stop, Picture& picture);

    /// Adds the samples of `range` to the pixels of a tile that need them; to all, when it is
    /// the first. Throws as renderTile().
    void refineTile(const PixelBox& tile, const SampleRange& range, const std::atomic<bool>* stop,
                    AdaptiveSampler& adaptive);

    void addTo(RenderStats& stats) const;

  private:
    struct Pixel {
        int x;
        int y;
        NeighbourVisibility neighbours;  ///< what samples before saw of the lights there
    };

    bool searchesEdgesAfter(const SampleRange& range) const;
    template <class Take>
    void sample(const SampleRange& range, const std::atomic<bool>* stop, const Take& take);
    void sampleTogether(std::span<const Pixel> pixels, const SampleRange& range);
    void findAll(const PixelBox& tile);
    void findNeedy(const PixelBox& tile, const AdaptiveSampler& adaptive);

    const RenderJob* job_;
    std::shared_ptr<const WorkerShaders> shaders_;
    CameraSampler sampler_;
    std::vector<Pixel> pixels_;  ///< of a tile, that get samples
    std::vector<CameraSample> samples_;
    std::vector<ShadedSample> shaded_;
    TileEdges edges_;  ///< that are searched for in a tile
    std::uint64_t primaryRays_ = 0;
};

}  // namespace tavora::studio
