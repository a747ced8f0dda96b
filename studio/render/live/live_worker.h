#pragma once

#include <ImathVec.h>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "studio/render/cache/cached_path.h"
#include "studio/render/image/accumulator.h"
#include "studio/render/live/framebuffer.h"
#include "studio/render/live/preview_request.h"
#include "studio/render/shade/camera_sampler.h"
#include "studio/render/shade/worker_shaders.h"
#include "studio/render/trace/camera_rays.h"
#include "studio/render/trace/ray_scene.h"

namespace tavora::studio {

/// What all workers of a live picture render.
struct PreviewView {
    CameraRays camera;
    std::vector<Imath::V2d> pattern;  ///< positions of the samples in a pixel, in order
    Background background;
};

/// One turn over the tiles.
struct PreviewPass {
    int step = 1;    ///< only pixels whose x and y are multiples of it
    int target = 1;  ///< samples that each has in the end
};

/// What one worker of a live picture works with: its module copy, which stays from change to
/// change, and its sampler. One thread at a time.
class LiveWorker {
  public:
    /// Only a worker that `speaks` passes on what its module says about settings.
    LiveWorker(const RayScene& scene, const std::filesystem::path& module, bool speaks);

    /// Takes over lights, shading and how the scene is posed. Returns the surfaces whose shading is
    /// another than before. Throws Error, Fault::Module and std::bad_alloc; the worker is
    /// then of no use any more.
    SurfaceSet adopt(const PreviewRequest& request);

    /// Adds to the pixels of a tile what they lack; `cache` is the tile's. Asks `superseded`
    /// before each few hundred samples, and leaves the rest when it is.
    void renderTile(FramebufferTile& tile, const PreviewPass& pass, const PreviewView& view,
                    const std::function<bool()>& superseded, Framebuffer& framebuffer,
                    TileCache& cache);

    /// Ends the module's pass: the scene is about to be posed anew.
    void release();

    std::uint64_t tracedRays() const;
    std::uint64_t evaluations() const;

  private:
    std::vector<SurfaceChange> changesIn(const PreviewRequest& request) const;
    /// A pixel that gets samples, and how many.
    struct Pixel {
        int x;
        int y;
        int count;
    };
    void addSamples(const Pixel& pixel, std::size_t number, const PreviewView& view,
                    const FramebufferPixel& state, TileCache& cache);
    void drop();
    void render(FramebufferTile& tile, const PreviewView& view, Framebuffer& framebuffer);
    void display(const FramebufferPixel& pixel, const Background& background, std::uint8_t* bytes);

    const RayScene* scene_;
    bool speaks_;
    WorkerShaders shaders_;
    std::vector<std::shared_ptr<const StateBlock>> shading_;  ///< by surface
    std::shared_ptr<const LightSet> lights_;
    std::uint64_t poseRevision_ = 0;
    std::optional<CameraSampler> sampler_;
    // Of pixels that are rendered together:
    std::vector<Pixel> pixels_;
    std::vector<CameraSample> samples_;
    std::vector<CachedPath> paths_;
    std::vector<ShadedSample> shaded_;
    std::uint64_t tracedBefore_ = 0;  ///< by samplers with lights of before
    std::uint64_t evaluationsBefore_ = 0;
};

}  // namespace tavora::studio
