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

/// A scene that can play, with an exposure, and a camera when the scene has none, that are the
/// same throughout its animations. So a film can be rendered in any number of parts. One
/// thread.
class FilmScene {
  public:
    /// Reads the scene; it is in its rest pose. Throws what GltfScene throws.
    FilmScene(const std::filesystem::path& file, const ReadOptions& options);

    Scene& scene() { return file_.scene(); }
    const Scene& scene() const { return file_.scene(); }

    /// Plays the animations that match `names`, by name, pattern or index; without names,
    /// those that can play together, which the report notes when there are others. Channels
    /// that cannot be played are reported in the scene's warnings. Returns the indices of the
    /// animations that play. Throws Error: Fault::Usage for a name that matches nothing.
    std::vector<std::size_t> play(const std::vector<std::string>& names, Report& report);
    /// Plays these of the scene's animations, by index, from the next pose() on; without any,
    /// the scene is in its rest pose at once. prepare() must be called after it.
    void play(const std::vector<std::size_t>& animations);
    std::vector<std::size_t> compatibleAnimations() const { return file_.compatibleAnimations(); }
    bool plays() const { return file_.plays(); }
    /// For a scene that will not play: frees the memory of everything but the scene. From then
    /// on play() and pose() do nothing.
    void closeFile() { file_.close(); }
    /// From the start of the animations that play to their end; 0 to 0 when none plays.
    const TimeRange& range() const { return range_; }

    /// Chooses the camera and measures the lights, throughout the range when anything plays;
    /// leaves the scene posed for the start of the range, or in its rest pose. `aspect` is the
    /// picture's width / height. Throws Error, Fault::Usage, when there is no such camera; see
    /// chooseCamera().
    void prepare(const std::string& camera, double aspect);

    /// Changes the picture's width / height after prepare(); this frames the scene again if it
    /// has no camera. Only reads the scene.
    void setAspect(double aspect);
    /// Whether the camera was made to show the whole scene.
    bool isFramed() const { return framing_.has_value(); }

    /// Poses the scene for a time in seconds, clamped to the range.
    void pose(double seconds);

    /// The camera and lights in the current pose, after prepare().
    Camera camera() const;
    LightSet lights(const LightingOptions& options) const;

  private:
    Camera framingCameraFor(double aspect) const;

    GltfScene file_;
    TimeRange range_;
    std::string cameraChoice_;
    double aspect_ = 1;
    LightMeter meter_;
    /// Of a scene that plays and has no camera, at several times.
    std::vector<Scene> geometries_;
    std::optional<Camera> framing_;  ///< for a scene without a camera
    Camera keyView_;                 ///< the key light of a scene without lights is relative to it
};

}  // namespace tavora::studio
