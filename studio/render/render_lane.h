#pragma once

#include <atomic>
#include <filesystem>
#include <functional>
#include <memory>
#include <span>
#include <vector>

#include "studio/render/film.h"
#include "studio/render/lane_shaders.h"
#include "studio/render/picture.h"
#include "studio/render/ray_scene.h"
#include "studio/render/refinement.h"
#include "studio/render/renderer.h"
#include "studio/render/sample_rounds.h"
#include "studio/render/tile_borders.h"
#include "studio/render/view.h"
#include "studio/render/view_samples.h"

namespace tavora::studio {

/// What all lanes of one render read.
struct RenderJob {
    const RayScene& scene;
    const LightSet& lights;
    const SurfaceShaders& shading;
    const std::filesystem::path& module;
    const RenderOptions& options;
    View view;
    std::vector<std::vector<Imath::V2d>> patterns;  ///< as patternsOf() gives them

    std::span<const Imath::V2d> placesIn(int x, int y) const {
        return patterns[static_cast<std::size_t>(x + y) % patterns.size()];
    }
    std::size_t samples() const { return patterns.front().size(); }  ///< of a pixel, at most
};

/// What one render thread works with. One thread at a time.
class RenderLane {
  public:
    /// `job` must outlive it.
    RenderLane(const RenderJob& job, std::shared_ptr<const LaneShaders> shaders);

    /// Renders the pixels of a tile with all samples. Throws
    /// RenderStopped soon after `stop` is set; the tile is then incomplete.
    void renderTile(const PixelBox& tile, const std::atomic<bool>* stop, Picture& picture);

    /// Adds the samples of `run` to the pixels of a tile that want them; to all,
    /// when it is the first. Throws as renderTile().
    void refineTile(const PixelBox& tile, const SampleRun& run, const std::atomic<bool>* stop,
                    Refinement& refinement);

    void addTo(RenderStats& stats) const;

    std::shared_ptr<const LaneShaders> shaders() const { return shaders_; }

  private:
    struct Pixel {
        int x;
        int y;
        KnownShadows known;  ///< what samples before met there
    };
    using Take = std::function<void(const Pixel& pixel, std::span<const ViewSample> samples)>;

    bool searchesBordersAfter(const SampleRun& run) const;
    void look(std::span<const Pixel> pixels, const SampleRun& run, const std::atomic<bool>* stop,
              const Take& take);
    void lookAtOnce(std::span<const Pixel> pixels, const SampleRun& run, const Take& take);
    void findAll(const PixelBox& tile);
    void findWanting(const PixelBox& tile, const Refinement& refinement);

    const RenderJob* job_;
    std::shared_ptr<const LaneShaders> shaders_;
    ViewSampler sampler_;
    std::vector<Pixel> pixels_;      ///< of a tile, that are looked at
    std::vector<ViewPlace> places_;  ///< of some pixels' samples
    std::vector<ViewSample> samples_;
    TileBorders borders_;       ///< that are searched for in a tile
    bool notesLights_ = false;  ///< in the samples
    std::uint64_t primaryRays_ = 0;
};

/// A lane for another thread than that of `first`, or the first one if that is null:
/// what modules have to say about the settings, the first copy says. `shaders` are those
/// that the thread had in an earlier render of the same shading, or null; the lane's
/// afterwards, if it has some of its own. Any thread. Throws Fault::Module.
std::unique_ptr<RenderLane> makeLane(const RenderJob& job, std::shared_ptr<LaneShaders>& shaders,
                                     const RenderLane* first);

}  // namespace tavora::studio
