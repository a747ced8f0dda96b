#pragma once

#include <filesystem>
#include <memory>
#include <span>

#include "studio/scene/read_options.h"
#include "studio/scene/scene.h"

namespace tavora::studio {

/// A glTF 2.0 file (.gltf or .glb; "-" for standard input, which must contain everything)
/// with the files that it refers to. It is read once; its scene can then be posed for any
/// time. One thread at a time.
class GltfScene {
  public:
    /// Reads the file; the scene is in its rest pose. Cameras and lights are those of the
    /// file; for a file without any, see default_view.h. Throws Error, Fault::Scene, for
    /// anything that cannot be rendered as the file says.
    explicit GltfScene(const std::filesystem::path& file, const ReadOptions& options = {});
    ~GltfScene();
    GltfScene(const GltfScene&) = delete;
    GltfScene& operator=(const GltfScene&) = delete;

    /// The scene, whose address does not change. Must not be rendered while pose() runs.
    const Scene& scene() const;
    Scene& scene();

    /// The animations that can be played together, by index: the first, and each later one
    /// that animates no property that one of these before it animates.
    std::vector<std::size_t> compatibleAnimations() const;

    /// Plays these of scene().animations from the next pose() on. When two animate the same
    /// property, the later one counts. Channels that cannot be played are reported in the
    /// scene's warnings and notes. Throws Error.
    void play(std::span<const std::size_t> animations);

    /// Whether any animation plays, so that scenes at different times may differ.
    bool plays() const;

    /// Poses the scene for a time of the animations, in seconds. Throws Error; the scene must
    /// then be posed again before it is used.
    void pose(double seconds);

    /// Frees the memory of everything but the scene, which keeps its pose. From then on
    /// nothing plays, and play() and pose() do nothing.
    void close();

  private:
    struct Parts;
    std::unique_ptr<Parts> parts_;
};

/// Reads the scene of a file in its rest pose, like GltfScene. Any thread.
Scene readGltf(const std::filesystem::path& file, const ReadOptions& options = {});

}  // namespace tavora::studio
