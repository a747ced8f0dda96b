#pragma once

#include <atomic>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "studio/link/state_block.h"
#include "studio/render/picture.h"
#include "studio/render/pixel_filter.h"
#include "studio/scene/lighting/light_levels.h"
#include "studio/scene/scene.h"

namespace tavora::studio {

struct RenderOptions {
    int width = 1280;
    int height = 720;
    std::optional<PixelBox> crop;  ///< inside the picture; empty: all of it
    int samples = 16;              ///< a pixel; at least, if `mostSamples` is more
    int mostSamples = 0;           ///< a pixel, where samples differ
    PixelFilter filter = PixelFilter::Box;
    int threads = 0;                       ///< 0: one a core; the picture never depends on it
    std::optional<Imath::V3d> background;  ///< display-referred; empty: transparent
    /// Each thread has a module copy of its own. Else all share one, whose lock
    /// lets one evaluation run at a time: to measure what that would cost.
    bool moduleEachThread = true;
};

/// Called now and then with the share of the work done, 0..1, by one thread at
/// a time; and asked whether to stop.
struct RenderWatch {
    std::function<void(double done)> progress;
    const std::atomic<bool>* stop = nullptr;
};

/// Counts of one render, for -v and benchmarks.
struct RenderStats {
    double buildSeconds = 0;  ///< acceleration structure
    double renderSeconds = 0;
    std::uint64_t pixels = 0;
    std::uint64_t primaryRays = 0;
    std::uint64_t shadowRays = 0;
    std::uint64_t evaluations = 0;
    std::uint64_t triangles = 0;
};

class RenderStopped : public std::exception {
  public:
    const char* what() const noexcept override { return "stopped"; }
};

/// Renders one scene as often as wanted. Holds the acceleration structure.
class Renderer {
  public:
    /// `scene` must outlive the renderer.
    explicit Renderer(const Scene& scene);
    ~Renderer();
    Renderer(const Renderer&) = delete;
    Renderer& operator=(const Renderer&) = delete;

    /// `shading` has one entry a surface of the scene; `module` may be empty
    /// when none shades. One module copy is loaded per thread.
    /// Throws Error, Fault::Module when the module cannot be used, RenderStopped, and
    /// std::invalid_argument for a picture without pixels or samples.
    Picture render(const Camera& camera, const LightRig& lights, const SurfaceShaders& shading,
                   const std::filesystem::path& module, const RenderOptions& options,
                   const RenderWatch& watch, RenderStats* stats);

  private:
    struct Parts;
    std::unique_ptr<Parts> parts_;
};

}  // namespace tavora::studio
