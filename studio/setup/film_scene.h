#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "studio/scene/gltf/reader.h"
#include "studio/scene/lighting/light_levels.h"
#include "studio/scene/read_options.h"
#include "studio/scene/scene.h"
#include "studio/setup/report.h"

namespace tavora::studio {

/// A span of time, in seconds.
struct TimeRange {
    double start = 0;
    double end = 0;
};

/// A scene that plays, with what stays the same over all of its animations' time whatever
/// part of it is rendered: levels of light, and the view where the scene has no camera. So
/// a film can be rendered in any pieces. One thread.
class FilmScene {
  public:
    /// The scene at rest. Throws what GltfScene throws.
    FilmScene(const std::filesystem::path& file, const ReadOptions& options);

    Scene& scene() { return file_.scene(); }
    const Scene& scene() const { return file_.scene(); }

    /// Plays the animations that `names` name, by name, pattern or index; without any, those
    /// that can play at once, which is noted where there are others. What cannot be played
    /// is told in the scene's warnings. Throws Error, Fault::Usage for a name that names
    /// nothing.
    void play(const std::vector<std::string>& names, Report& report);
    bool plays() const { return file_.plays(); }
    /// Of what plays.
    const TimeRange& range() const { return range_; }

    /// Chooses the view and measures the light, over the range where anything plays; leaves
    /// the scene at its start, else at rest. Throws Error, Fault::Usage for a camera that
    /// is not there; see chooseCamera().
    void settle(const std::string& camera, double aspect);

    /// The scene at a time; before the range and after it as at its ends.
    void pose(double seconds);

    /// As the scene is posed; after settle().
    Camera camera() const;
    LightRig lights(const LightingOptions& options) const;

  private:
    GltfScene file_;
    TimeRange range_;
    std::string cameraChoice_;
    double aspect_ = 1;
    LightMeter meter_;
    std::optional<Camera> framing_;  ///< where the scene has no camera
    Camera keyView_;                 ///< from which a scene without lights is lit
};

}  // namespace tavora::studio
