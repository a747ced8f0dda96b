#pragma once

#include <ImathVec.h>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <functional>
#include <optional>

#include "studio/render/image/picture.h"

namespace tavora::studio {

/// A frame of a film. A still picture is the first, at the start of time.
struct FrameTime {
    int frame = 0;
    double seconds = 0;

    bool operator==(const FrameTime&) const = default;
};

/// What a scene's acceleration structure is built for: the quickest rays, or quick updates
/// from frame to frame. Pictures are the same.
enum class SceneUse { Still, Film };

/// How a pixel weighs what shows around its centre.
enum class PixelFilter {
    Box,            ///< the pixel itself, evenly: the crispest
    Tent,           ///< falls to nothing at the neighbours' centres
    BlackmanHarris  ///< a bell 3 pixels wide: the softest
};

/// Some of a pixel's samples, by number: from `first` to before `last`.
struct SampleRange {
    std::size_t first = 0;
    std::size_t last = 0;

    std::size_t size() const { return last - first; }
};

/// What a final picture is rendered with.
struct RenderOptions {
    int width = 1280;
    int height = 720;
    std::optional<PixelBox> crop;  ///< inside the picture; empty: all of it
    int samples = 16;              ///< a pixel; the least, if `maxSamples` is more
    int maxSamples = 0;            ///< a pixel, where samples differ
    PixelFilter filter = PixelFilter::Box;
    int threads = 0;                       ///< 0: one a core; the picture never depends on it
    std::optional<Imath::V3d> background;  ///< display-referred; empty: transparent
    FrameTime time;
    /// Only these of the pixels' samples; empty: all of them, and with `maxSamples` more
    /// where samples differ.
    std::optional<SampleRange> part;
    /// Each worker has a module copy of its own. Else all share one, whose mutex lets one
    /// evaluation run at a time: to measure what that would cost.
    bool modulePerWorker = true;
};

/// How a render reports to its caller.
struct RenderWatch {
    /// Called now and then, by the thread that called render(), with the fraction of the work
    /// that is done, 0..1. May be empty.
    std::function<void(double done)> progress;
    /// Set by any thread to stop the render; may be null.
    const std::atomic<bool>* stop = nullptr;
};

/// Counts of one render, for -v and benchmarks.
struct RenderStats {
    double buildSeconds = 0;   ///< acceleration structure, the last time
    std::uint64_t refits = 0;  ///< of single meshes so far, by update()
    std::uint64_t rebuilds = 0;
    double renderSeconds = 0;
    std::uint64_t pixels = 0;
    std::uint64_t primaryRays = 0;  ///< one for each sample
    std::uint64_t shadowRays = 0;
    std::uint64_t evaluations = 0;  ///< of shaders
    std::uint64_t triangles = 0;
};

/// Thrown by a render that was stopped.
class RenderStopped : public std::exception {
  public:
    const char* what() const noexcept override { return "stopped"; }
};

}  // namespace tavora::studio
