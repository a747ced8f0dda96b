#pragma once

#include <array>
#include <atomic>
#include <chrono>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "studio/render/lane_team.h"
#include "studio/render/live_canvas.h"
#include "studio/render/live_lane.h"
#include "studio/render/live_picture.h"
#include "studio/render/live_wish.h"
#include "studio/render/path_store.h"
#include "studio/render/ray_scene.h"

namespace tavora::studio {

/// How a live picture talks to its owner while it is painted.
struct LiveWatch {
    std::function<bool()> overtaken;           ///< something else is wished; any thread
    std::function<bool()> ending;              ///< nothing is wished any more; any thread
    std::function<void(LiveFrame)> published;  ///< called by the painter's thread
};

/// Brings a canvas in line with one wish after the other, on a team of threads.
/// One thread, always the same.
class LivePainter {
  public:
    /// `scene` must outlive it. Throws std::system_error.
    LivePainter(const RayScene& scene, std::filesystem::path module, const LiveOptions& options);

    /// Paints until the picture is clean or, once a first picture is out, `wish`
    /// is overtaken. That first one is not dropped: while changes come faster
    /// than pictures, something must be seen. What it throws (Fault::Module,
    /// std::bad_alloc) leaves it ready for another try.
    void paint(const LiveWish& wish, const LiveWatch& watch);

    /// Between two calls of paint(), before the scene is posed anew; the next wish is one
    /// of the scene posed anew.
    void letGo();

    const LiveStats& stats() const { return stats_; }

  private:
    enum class Change { Shading, Lights, View };
    enum class Swept { All, Some, Overtaken };

    void follow(const LiveWish& wish, const LiveWatch& watch);
    Change adopt(const LiveWish& wish);
    void adoptView(const LiveWish& wish);
    void adoptPaths(const LiveWish& wish, bool newView, bool newLights);
    SurfaceSet adoptOnLanes(const LiveWish& wish);
    void empty(SurfaceSet surfaces);
    int firstStep(Change change) const;
    bool paintFirst(Change change, const LiveWatch& watch);
    void refine(const LiveWatch& watch);
    Swept sweep(const LivePass& pass, const std::function<bool()>& overtaken,
                std::chrono::steady_clock::time_point until);
    void measure(Change change, std::uint64_t samples, double seconds);
    void publish(int coarseness, const LiveWatch& watch);
    void countUp();

    const RayScene* scene_;
    std::filesystem::path module_;
    LiveOptions options_;
    LaneTeam team_;
    std::vector<std::unique_ptr<LiveLane>> lanes_;
    std::optional<LiveShot> shot_;
    std::optional<LiveCanvas> canvas_;
    std::optional<PathStore> paths_;
    LiveWish wish_;  ///< what the canvas shows, or is to
    std::atomic<std::size_t> nextTile_{0};
    std::array<double, 3> secondsASample_{};  ///< on one lane, by Change, as last measured
    LiveStats stats_;
};

}  // namespace tavora::studio
