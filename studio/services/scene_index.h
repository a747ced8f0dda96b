#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <unordered_map>
#include <vector>

#include "host/types.h"
#include "studio/scene/image/texture_lookup.h"
#include "studio/scene/scene.h"

namespace tavora::studio {

/// One part of one object: the unit of geometry that a ray can hit.
struct SceneMesh {
    const Object* object = nullptr;
    const Part* part = nullptr;
    const Mesh* mesh = nullptr;
    const Surface* surface = nullptr;
    int surfaceIndex = 0;
};

/// The triangle that a polygon identity denotes.
struct SceneTriangle {
    const SceneMesh* mesh = nullptr;  ///< null for an unknown identity
    std::uint32_t triangle = 0;
};

/// Finds a scene's items and triangles by identity, in constant time, and has its images'
/// mipmaps.
///
/// The identity of an item is the address of its record in the scene; that of a polygon or
/// texture is a packed number and no valid address. The scene must outlive the index. Any
/// thread may read, but not during refresh().
class SceneIndex {
  public:
    /// Builds the index. Throws Error when the scene's memory budget is too small for the
    /// mipmaps.
    explicit SceneIndex(const Scene& scene);

    /// To be called after the scene was posed again: updates the objects. Images do not change.
    void refresh();

    const Scene& scene() const { return *scene_; }

    /// All parts of all objects, in the scene's order.
    const std::vector<SceneMesh>& meshes() const { return meshes_; }

    /// The mipmaps of a texture's image; null when the scene has no such image or it has no
    /// pixels.
    const TexturePyramid* pyramid(const TextureUse& use) const;

    /// The index of an object in Scene::objects; empty for an unknown identity.
    std::optional<std::size_t> objectIndex(HostItemId id) const;
    /// The index of a surface in Scene::surfaces; empty for an unknown identity.
    std::optional<std::size_t> surfaceIndex(HostSurfaceId id) const;

    /// The identity of surface `surface`, an index into Scene::surfaces.
    HostSurfaceId surfaceId(std::size_t surface) const;
    /// The identity of a triangle of mesh `mesh`, an index into meshes().
    HostPolygonId polygonId(std::size_t mesh, std::uint32_t triangle) const;
    SceneTriangle triangle(HostPolygonId id) const;

  private:
    /// The index of a texture's mipmaps in `pyramids_`; empty for an image that does not exist.
    std::optional<std::size_t> pyramidIndex(const TextureUse& use) const;
    void addPyramid(const std::optional<TextureUse>& use);

    const Scene* scene_;
    MemoryShare memory_;
    std::vector<SceneMesh> meshes_;
    /// By image: first those of images read as colours, then those of images read as data.
    std::vector<std::unique_ptr<const TexturePyramid>> pyramids_;
    std::unordered_map<const void*, std::size_t> objects_;
};

/// The identity of an object for modules: its address.
inline HostItemId itemId(const Object* object) {
    return reinterpret_cast<HostItemId>(const_cast<Object*>(object));
}

}  // namespace tavora::studio
