#pragma once

#include <map>
#include <memory>
#include <utility>
#include <vector>

#include "studio/scene/gltf/accessor.h"
#include "studio/scene/gltf/meshes.h"
#include "studio/scene/gltf/source.h"
#include "studio/scene/scene.h"

namespace tavora::studio {

/// Makes a scene's objects, lights and cameras from a file's nodes and their current
/// transforms in its document. The stored meshes are read at the first pose; whatever did
/// not change since the last pose is reused. One thread at a time.
class GltfPoser {
  public:
    /// `source` must outlive the poser.
    explicit GltfPoser(const GltfSource& source) : source_(source), meshes_(source) {}

    /// Fills the objects, lights, cameras and bounds of `scene`, which must have the file's
    /// surfaces and be the same in every call. Objects and lights that an earlier pose showed
    /// keep their addresses; meshes are deformed in place, with a new revision. Throws Error;
    /// the scene must then be posed again before it is used.
    void pose(Scene& scene);

  private:
    friend class Posing;

    /// A node's deformed copy of a mesh, with the weights and joints that deformed it last.
    struct DeformedMesh {
        std::shared_ptr<Mesh> mesh;
        std::vector<double> weights;
        std::vector<Imath::M44d> joints;
    };
    /// The world bounds of a part, and what they were computed from.
    struct PlacedMesh {
        const Mesh* mesh = nullptr;
        std::uint64_t revision = 0;
        Imath::M44d toWorld;
        Imath::Box3d bounds;
    };

    const GltfSource& source_;
    MeshStore meshes_;
    std::map<int, std::shared_ptr<Object>> objects_;  ///< by node, like the next three
    std::map<int, std::shared_ptr<Light>> lights_;
    std::map<std::pair<int, const PrimitiveGeometry*>, DeformedMesh> deformed_;
    std::map<std::pair<int, std::size_t>, PlacedMesh> placed_;  ///< by node and part
    std::map<int, FloatTable> inverseBinds_;                    ///< by skin
    std::size_t deformedValues_ = 0;  ///< vertices and triangles in deformed copies
    std::uint64_t revision_ = 0;
};

}  // namespace tavora::studio
