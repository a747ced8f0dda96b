#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "studio/render/options.h"
#include "studio/render/surface/pick.h"
#include "studio/scene/lighting/light_set.h"
#include "studio/scene/scene.h"

namespace tavora::studio {

struct LiveOptions {
    int threads = 0;                              ///< 0: one a core
    int samples = 16;                             ///< a pixel of the clean picture
    std::size_t memory = std::size_t{512} << 20;  ///< bytes for hits and light kept between edits
    std::optional<Imath::V3d> background;         ///< display-referred; empty: transparent
};

/// A picture as it stands, ready for display.
struct LiveFrame {
    std::uint64_t revision = 0;  ///< of what was asked; see LivePicture
    int width = 0;
    int height = 0;
    std::vector<std::uint8_t> rgba;  ///< sRGB-encoded, not premultiplied, rows from the top
    double refined = 0;              ///< fraction of the samples that are in, 0..1; 1: clean
    int blockSize = 1;               ///< width in pixels of the blocks it is drawn in
};

/// What the picture costs, for -v and benchmarks.
struct LiveStats {
    std::size_t cachedBytes = 0;     ///< of hits and light kept between edits
    double cachedFraction = 0;       ///< fraction of the samples whose hits are kept
    double firstPictureSeconds = 0;  ///< from the last change to its first whole picture
    std::uint64_t tracedRays = 0;    ///< since the start, shadow rays included
    std::uint64_t evaluations = 0;
    std::string notice;  ///< one line when something had to be left out; else empty
};

/// A picture of the scene that follows changes: soon a whole one, coarse where
/// it must be, then refined until it is what Renderer gives, byte for byte.
/// A change during refinement starts it again. What a change of settings cannot
/// alter (hits, positions, light) is kept and not traced again.
///
/// Threads of its own render, each with a module copy of its own. All members but pose()
/// return at once; one thread, the owner's, calls them.
class LivePicture {
  public:
    /// `scene` must outlive it. `changed` is called on a render thread whenever
    /// latest() has something newer or failure() is set; it must not call back.
    LivePicture(const Scene& scene, std::filesystem::path module, const LiveOptions& options,
                std::function<void()> changed);
    /// Stops and joins its threads.
    ~LivePicture();
    LivePicture(const LivePicture&) = delete;
    LivePicture& operator=(const LivePicture&) = delete;

    /// Each of these asks for a new picture and returns its revision, which
    /// grows by one with each change. Nothing is rendered before all three are set.
    /// A width or height below 1 counts as 1: windows may be folded away.
    std::uint64_t setView(const Camera& camera, int width, int height);
    std::uint64_t setLights(std::shared_ptr<const LightSet> lights);
    /// One entry a surface of the scene, else throws std::invalid_argument.
    std::uint64_t setShading(const SurfaceShaders& shading);
    /// One of them, by place in Scene::surfaces. Throws std::out_of_range for one
    /// that is not there, and before setShading().
    std::uint64_t setSurface(std::size_t surface, const std::optional<SurfaceShader>& shader);

    /// Poses the scene anew: waits, a row of pixels at most, until no thread reads it, calls
    /// `change`, which may also set the view and the lights, and goes on with the scene as
    /// it is then, at the time that `change` gives. All that was known of it is forgotten.
    /// What `change` throws is thrown on; nothing is rendered then until a scene is posed.
    std::uint64_t pose(const std::function<FrameTime()>& change);

    /// The newest picture; null before the first.
    std::shared_ptr<const LiveFrame> latest() const;
    /// What a pixel of the current view shows, by a ray of its own; none before
    /// the scene is ready. Waits for a scene that is being brought up to date.
    std::optional<Picked> pickAt(int x, int y) const;
    /// Its surface alone; -1 for none.
    std::ptrdiff_t surfaceAt(int x, int y) const {
        const std::optional<Picked> picked = pickAt(x, y);
        return picked ? static_cast<std::ptrdiff_t>(picked->surface) : -1;
    }
    LiveStats stats() const;
    /// One line that says why nothing is rendered any more (the module failed,
    /// no memory); empty while all is well. A new setShading() or
    /// setSurface() tries again.
    std::string failure() const;

  private:
    struct Parts;
    std::unique_ptr<Parts> parts_;
};

}  // namespace tavora::studio
