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

/// Makes a scene's contents from a file's nodes as its document places them.
/// What does not change with time, the meshes as stored, is read at the first
/// pose and kept; what did not change since the last pose is not made again. One thread
/// at a time.
class GltfPoser {
  public:
    /// `source` must outlive the poser.
    explicit GltfPoser(const GltfSource& source) : source_(source), meshes_(source) {}

    /// Fills objects, lights, cameras and bounds of `scene`, which has the file's surfaces,
    /// the same in every call. Objects and lights of nodes that an earlier pose showed stay
    /// where they are; meshes that bend anew do so in place, with a new revision.
    /// Throws Error; the scene is then to be posed again before it is used.
    void pose(Scene& scene);

  private:
    friend class Posing;

    /// A copy of a mesh that a node bends, and by what it was bent last.
    struct DeformedMesh {
        std::shared_ptr<Mesh> mesh;
        std::vector<double> weights;
        std::vector<Imath::M44d> joints;
    };
    /// A mesh where it stands.
    struct PlacedMesh {
        const Mesh* mesh = nullptr;
        std::uint64_t revision = 0;
        Imath::M44d toWorld;
        Imath::Box3d bounds;
    };

    const GltfSource& source_;
    MeshStore meshes_;
    std::map<int, std::shared_ptr<Object>> objects_;  ///< by node, as the next three
    std::map<int, std::shared_ptr<Light>> lights_;
    std::map<std::pair<int, const PrimitiveGeometry*>, DeformedMesh> bent_;
    std::map<std::pair<int, std::size_t>, PlacedMesh> placed_;  ///< and by part
    std::map<int, FloatTable> inverseBinds_;                    ///< by skin
    std::size_t bentValues_ = 0;  ///< vertices and triangles in bent copies
    std::uint64_t revision_ = 0;
};

}  // namespace tavora::studio
