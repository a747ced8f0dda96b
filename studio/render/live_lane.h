#pragma once

#include <ImathVec.h>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "studio/render/film.h"
#include "studio/render/kept_paths.h"
#include "studio/render/lane_shaders.h"
#include "studio/render/live_canvas.h"
#include "studio/render/live_wish.h"
#include "studio/render/ray_scene.h"
#include "studio/render/sample_shader.h"
#include "studio/render/view.h"

namespace tavora::studio {

/// What all lanes of a live picture look through.
struct LiveShot {
    View view;
    std::vector<Imath::V2d> pattern;  ///< places of the samples, in order
    Backdrop backdrop;
};

/// One turn over the tiles.
struct LivePass {
    int step = 1;    ///< only pixels whose x and y are multiples of it
    int target = 1;  ///< samples that each has in the end
};

/// One render thread's own part of a live picture: its module copy, which stays
/// from change to change, and what shades. One thread at a time.
class LiveLane {
  public:
    /// Only a lane that `speaks` passes on what its module says about settings.
    LiveLane(const RayScene& scene, const std::filesystem::path& module, bool speaks);

    /// Takes over lights, shading and how the scene is posed. Returns the surfaces whose shading is
    /// another than before. Throws Error, Fault::Module and std::bad_alloc; the lane is
    /// then of no use any more.
    SurfaceSet adopt(const LiveWish& wish);

    /// Adds to the pixels of a tile what they lack; `paths` are the tile's. Asks
    /// `overtaken` before each row, and leaves the rest when it is.
    void renderTile(LiveTile& tile, const LivePass& pass, const LiveShot& shot,
                    const std::function<bool()>& overtaken, LiveCanvas& canvas, TilePaths& paths);

    /// Ends the module's pass: the scene is about to be posed anew.
    void letGo();

    std::uint64_t tracedRays() const;
    std::uint64_t evaluations() const;

  private:
    std::vector<SurfaceChange> changesIn(const LiveWish& wish) const;
    /// A pixel, in the picture and within its tile.
    struct Spot {
        int x;
        int y;
        std::size_t number;
    };
    void refine(const Spot& spot, int target, const LiveShot& shot, TilePaths& paths,
                LivePixel& pixel);
    void show(const LivePixel& pixel, const Backdrop& backdrop, std::uint8_t* bytes);

    const RayScene* scene_;
    bool speaks_;
    LaneShaders shaders_;
    std::vector<std::shared_ptr<const StateBlock>> worn_;  ///< by surface
    std::shared_ptr<const LightSet> lights_;
    std::uint64_t poseRevision_ = 0;
    std::optional<SampleShader> shader_;
    ColorDecoder decoder_;
    std::uint64_t tracedBefore_ = 0;  ///< by shaders with lights of before
    std::uint64_t evaluationsBefore_ = 0;
};

}  // namespace tavora::studio
