#pragma once

#include <array>
#include <chrono>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "studio/render/cache/hit_cache.h"
#include "studio/render/live/framebuffer.h"
#include "studio/render/live/live_picture.h"
#include "studio/render/live/live_worker.h"
#include "studio/render/live/preview_request.h"
#include "studio/render/threads/thread_pool.h"
#include "studio/render/trace/ray_scene.h"

namespace tavora::studio {

/// How a live picture talks to its owner while it is rendered.
struct PreviewWatch {
    std::function<bool()> superseded;          ///< something else is requested; any thread
    std::function<bool()> ending;              ///< nothing is requested any more; any thread
    std::function<void(LiveFrame)> published;  ///< called by the renderer's thread
};

/// Brings a framebuffer in line with one request after the other, on workers of its own.
/// One thread, always the same.
class ProgressiveRenderer {
  public:
    /// `scene` must outlive it. Throws std::system_error.
    ProgressiveRenderer(const RayScene& scene, std::filesystem::path module,
                        const LiveOptions& options);

    /// Renders until the picture is clean or, once a first picture is out, `request`
    /// is superseded. That first one is not dropped: while changes come faster
    /// than pictures, something must be seen. What it throws (Fault::Module,
    /// std::bad_alloc) leaves it ready for another try.
    void render(const PreviewRequest& request, const PreviewWatch& watch);

    /// Between two calls of render(), before the scene is posed anew; the next request is one
    /// of the scene posed anew.
    void release();

    const LiveStats& stats() const { return stats_; }

  private:
    enum class Change { Shading, Lights, View };
    enum class Swept { All, Some, Superseded };

    void follow(const PreviewRequest& request, const PreviewWatch& watch);
    Change adopt(const PreviewRequest& request);
    void adoptView(const PreviewRequest& request);
    void adoptCache(const PreviewRequest& request, bool newView, bool newLights);
    SurfaceSet adoptOnWorkers(const PreviewRequest& request);
    void empty(SurfaceSet surfaces);
    int firstStep(Change change) const;
    bool renderFirst(Change change, const PreviewWatch& watch);
    void refine(const PreviewWatch& watch);
    void startPass();
    Swept sweep(const PreviewPass& pass, const std::function<bool()>& superseded,
                std::chrono::steady_clock::time_point until);
    void measure(Change change, std::uint64_t samples, double seconds);
    void publish(int blockSize, const PreviewWatch& watch);
    void countUp();

    const RayScene* scene_;
    std::filesystem::path module_;
    LiveOptions options_;
    ThreadPool pool_;
    std::vector<std::unique_ptr<LiveWorker>> workers_;
    std::optional<PreviewView> view_;
    std::optional<Framebuffer> framebuffer_;
    std::optional<HitCache> cache_;
    PreviewRequest shown_;                      ///< what the framebuffer shows, or is to
    std::vector<std::size_t> remaining_;        ///< tiles of the pass that are not done
    std::array<double, 3> secondsPerSample_{};  ///< on one worker, by Change, as last measured
    LiveStats stats_;
};

}  // namespace tavora::studio
