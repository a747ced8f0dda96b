#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <unordered_map>
#include <vector>

#include "host/types.h"
#include "studio/scene/image/texture_lookup.h"
#include "studio/scene/scene.h"

namespace tavora::studio {

/// One part of one object: what a ray can hit.
struct SceneMesh {
    const Object* object = nullptr;
    const Part* part = nullptr;
    const Mesh* mesh = nullptr;
    const Surface* surface = nullptr;
    int surfaceIndex = 0;
};

/// A triangle that a module's identity stands for.
struct SceneTriangle {
    const SceneMesh* mesh = nullptr;  ///< null for an unknown identity
    std::uint32_t triangle = 0;
};

/// What modules and renderer look up in a scene, each in constant time:
/// items by identity, triangles by identity, images ready for look-up.
///
/// Identities are the addresses of the scene's own records, except polygons and
/// textures, whose identities pack numbers into a word and point at nothing.
/// The scene must outlive the index. Any thread may read, but not during refresh().
class SceneIndex {
  public:
    /// Throws Error where the scene's budget does not hold the images' pyramids.
    explicit SceneIndex(const Scene& scene);

    /// After the scene was posed anew: its objects are looked up as they are now. Images
    /// stay.
    void refresh();

    const Scene& scene() const { return *scene_; }

    /// All parts of all objects, in the scene's order.
    const std::vector<SceneMesh>& meshes() const { return meshes_; }

    /// The image of a texture, or null when the scene has no such image or it
    /// holds no pixel.
    const TexturePyramid* pyramid(const TextureUse& use) const;

    /// Where in Scene::objects an object stands, or -1.
    std::ptrdiff_t objectIndex(HostItemId id) const;
    /// Where in Scene::surfaces a surface stands, or -1.
    std::ptrdiff_t surfaceIndex(HostSurfaceId id) const;

    HostSurfaceId surfaceId(std::size_t surface) const;
    HostPolygonId polygonId(std::size_t mesh, std::uint32_t triangle) const;
    SceneTriangle triangle(HostPolygonId id) const;

  private:
    /// Where in `pyramids_` a texture's stands; past the end for an image that is not there.
    std::size_t pyramidIndex(const TextureUse& use) const;
    void addPyramid(const std::optional<TextureUse>& use);

    const Scene* scene_;
    MemoryShare memory_;
    std::vector<SceneMesh> meshes_;
    /// By image; the images first as colours, then as data.
    std::vector<std::unique_ptr<const TexturePyramid>> pyramids_;
    std::unordered_map<const void*, std::ptrdiff_t> objects_;
};

/// Identities as modules see them.
inline HostItemId itemId(const Object* object) {
    return reinterpret_cast<HostItemId>(const_cast<Object*>(object));
}

}  // namespace tavora::studio
