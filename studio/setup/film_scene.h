#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "studio/scene/gltf/reader.h"
#include "studio/scene/lighting/light_set.h"
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
    /// nothing. Returns what plays.
    std::vector<std::size_t> play(const std::vector<std::string>& names, Report& report);
    /// Plays these of the scene's animations from its next pose() on; none: it is at rest at
    /// once. To be settled anew.
    void play(const std::vector<std::size_t>& animations);
    std::vector<std::size_t> compatibleAnimations() const { return file_.compatibleAnimations(); }
    bool plays() const { return file_.plays(); }
    /// Nothing will play: what a file takes beside its scene is given back. Afterwards
    /// play() and pose() do nothing.
    void stayAtRest() { file_.close(); }
    /// Of what plays.
    const TimeRange& range() const { return range_; }

    /// Chooses the view and measures the light, over the range where anything plays; leaves
    /// the scene at its start, else at rest. Throws Error, Fault::Usage for a camera that
    /// is not there; see chooseCamera().
    void settle(const std::string& camera, double aspect);

    /// Another shape of the picture, after settle(): frames the scene anew where it has no
    /// camera. The scene itself is only read.
    void setAspect(double aspect);
    /// Whether the view is chosen so that the scene is seen as a whole.
    bool isFramed() const { return framing_.has_value(); }

    /// The scene at a time; before the range and after it as at its ends.
    void pose(double seconds);

    /// As the scene is posed; after settle().
    Camera camera() const;
    LightSet lights(const LightingOptions& options) const;

  private:
    Camera framingFor(double aspect) const;

    GltfScene file_;
    TimeRange range_;
    std::string cameraChoice_;
    double aspect_ = 1;
    LightMeter meter_;
    std::vector<Scene> geometries_;  ///< that are framed, of a scene that plays
    std::optional<Camera> framing_;  ///< where the scene has no camera
    Camera keyView_;                 ///< from which a scene without lights is lit
};

}  // namespace tavora::studio
