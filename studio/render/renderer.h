#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "studio/link/state_block.h"
#include "studio/render/picture.h"
#include "studio/render/pixel_filter.h"
#include "studio/render/scene_use.h"
#include "studio/scene/lighting/light_set.h"
#include "studio/scene/scene.h"

namespace tavora::studio {

/// A frame of a film. A still picture is the first, at the start of time.
struct FrameTime {
    int frame = 0;
    double seconds = 0;

    bool operator==(const FrameTime&) const = default;
};

/// Some of a pixel's samples: `first` to `last` of its places, the last excluded.
struct SampleRun {
    std::size_t first = 0;
    std::size_t last = 0;

    std::size_t size() const { return last - first; }
};

struct RenderOptions {
    int width = 1280;
    int height = 720;
    std::optional<PixelBox> crop;  ///< inside the picture; empty: all of it
    int samples = 16;              ///< a pixel; at least, if `mostSamples` is more
    int mostSamples = 0;           ///< a pixel, where samples differ
    PixelFilter filter = PixelFilter::Box;
    int threads = 0;                       ///< 0: one a core; the picture never depends on it
    std::optional<Imath::V3d> background;  ///< display-referred; empty: transparent
    FrameTime time;
    /// Only these of the pixels' samples, the last excluded; empty: all of them, and with
    /// `mostSamples` more where samples differ.
    std::optional<SampleRun> part;
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
    double buildSeconds = 0;   ///< acceleration structure, the last time
    std::uint64_t refits = 0;  ///< of single meshes so far, by update()
    std::uint64_t rebuilds = 0;
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

/// Renders one scene as often as wanted. Holds the acceleration structure, and between
/// renders the threads' module copies.
class Renderer {
  public:
    /// `scene` must outlive the renderer.
    explicit Renderer(const Scene& scene, SceneUse use = SceneUse::Still);
    ~Renderer();
    Renderer(const Renderer&) = delete;
    Renderer& operator=(const Renderer&) = delete;

    /// After the scene was posed anew: brings the acceleration structure to what it is now.
    /// Throws Error.
    void update();

    /// `shading` has one entry a surface of the scene, `module` may be empty
    /// when none shades. One module copy is loaded per thread.
    /// Throws Error, Fault::Module when the module cannot be used, RenderStopped, and
    /// std::invalid_argument for a picture without pixels or samples.
    Picture render(const Camera& camera, const LightSet& lights, const SurfaceShaders& shading,
                   const std::filesystem::path& module, const RenderOptions& options,
                   const RenderWatch& watch, RenderStats* stats);

  private:
    struct Parts;
    std::unique_ptr<Parts> parts_;
};

}  // namespace tavora::studio
