#pragma once

#include <filesystem>
#include <memory>
#include <span>

#include "studio/scene/read_options.h"
#include "studio/scene/scene.h"

namespace tavora::studio {

/// A glTF 2.0 file (.gltf or .glb; "-" for standard input, which must hold everything)
/// with all it refers to, read once, whose scene can be posed at any time. One thread at
/// a time.
class GltfScene {
  public:
    /// The scene at rest. Cameras and lights are those of the file; see default_view.h for
    /// what a file may lack. Throws Error for anything that cannot be rendered as the file
    /// says.
    explicit GltfScene(const std::filesystem::path& file, const ReadOptions& options = {});
    ~GltfScene();
    GltfScene(const GltfScene&) = delete;
    GltfScene& operator=(const GltfScene&) = delete;

    /// Stays at its address. Whoever renders it must not while it is posed.
    const Scene& scene() const;
    Scene& scene();

    /// Animations that can play at once: the first, and each later one that moves nothing
    /// that one before it moves.
    std::vector<std::size_t> compatibleAnimations() const;

    /// Plays these of scene().animations from the next pose() on; where two move the same,
    /// the later one counts. What a file asks for and cannot be done is told in the scene's
    /// warnings and notes. Throws Error, and std::out_of_range.
    void play(std::span<const std::size_t> animations);

    /// Whether anything plays, so that scenes at different times may differ.
    bool plays() const;

    /// Makes the scene as it is at a time of the animations, in seconds. Throws Error;
    /// the scene is then to be posed anew before it is used.
    void pose(double seconds);

    /// Gives back the memory that the file takes beside the scene, which stays as it is.
    /// Nothing plays from then on: play() and pose() do nothing.
    void close();

  private:
    struct Parts;
    std::unique_ptr<Parts> parts_;
};

/// The scene of a file at rest, as GltfScene reads it. Any thread.
Scene readGltf(const std::filesystem::path& file, const ReadOptions& options = {});

}  // namespace tavora::studio
