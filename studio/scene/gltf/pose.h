#pragma once

#include <vector>

#include "studio/scene/gltf/meshes.h"
#include "studio/scene/gltf/nodes.h"
#include "studio/scene/gltf/source.h"
#include "studio/scene/scene.h"

namespace tavora::studio {

/// Makes a scene's contents from a file's nodes at a time.
/// What does not change with time, the meshes as stored, is read at the first
/// pose and kept. One thread at a time.
class GltfPoser {
  public:
    /// `source` must outlive the poser.
    explicit GltfPoser(const GltfSource& source) : source_(source), meshes_(source) {}

    /// Fills objects, lights, cameras and bounds of `scene`, which has none yet
    /// but has its surfaces; `nodes` has one pose for every node of the file.
    /// Unbent meshes are shared with earlier poses. Throws Error.
    void pose(const std::vector<NodePose>& nodes, Scene& scene);

  private:
    const GltfSource& source_;
    MeshStore meshes_;
};

}  // namespace tavora::studio
