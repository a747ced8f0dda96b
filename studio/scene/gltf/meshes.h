#pragma once

#include <map>
#include <memory>
#include <string>
#include <tuple>
#include <vector>

#include "studio/scene/gltf/primitive.h"
#include "studio/scene/gltf/source.h"

namespace tavora::studio {

/// A primitive of a mesh with its material.
struct SourcePrimitive {
    std::shared_ptr<const PrimitiveGeometry> geometry;
    int material = gltf::kNone;
};

/// The meshes of a file, each read at its first use. Primitives of the same accessors share
/// their geometry. One thread at a time.
class MeshStore {
  public:
    /// `source` must outlive the store.
    explicit MeshStore(const GltfSource& source) : source_(source) {}

    /// All triangle primitives of mesh `index`. Points and lines are left out, with a line in
    /// the scene's warnings. `scene` must have the file's surfaces, and must be the same in
    /// every call. Valid as long as the store. Throws Error.
    const std::vector<SourcePrimitive>& primitives(int index, Scene& scene);

    /// How many vertices and triangles a file of this size may have in total.
    std::size_t maxValues() const;

  private:
    using Needs = decltype(MaterialNeeds().key());
    using Key =
        std::tuple<gltf::Attributes, int, gltf::Mode, std::vector<gltf::Attributes>, int, Needs>;

    std::vector<SourcePrimitive> read(int index, Scene& scene);
    std::shared_ptr<const PrimitiveGeometry> geometryOf(const gltf::Primitive& primitive,
                                                        const MaterialNeeds& needs,
                                                        const std::string& name,
                                                        const std::string& where);
    void countValues(const PrimitiveGeometry& geometry, const std::string& where);

    const GltfSource& source_;
    std::map<int, std::vector<SourcePrimitive>> meshes_;
    std::map<Key, std::shared_ptr<const PrimitiveGeometry>> geometries_;
    std::size_t values_ = 0;  // vertices and triangles that were read
};

}  // namespace tavora::studio
