#pragma once

#include <ImathMatrix.h>
#include <vector>

#include "studio/scene/gltf/primitive.h"

namespace tavora::studio {

/// The joints of a skin at a time.
struct JointPose {
    std::vector<Imath::M44d> toWorld;  ///< from the mesh as bound
    bool mirrored = false;             ///< most of them turn triangles inside out
};

/// Adds the morph targets of `geometry` to `mesh`, a copy of its mesh, as far as
/// there are `weights`. Normals and tangents may lose their length; tangents that
/// were made, not read, are left as they are.
void morph(const PrimitiveGeometry& geometry, const std::vector<double>& weights, Mesh& mesh);

/// Moves `mesh` with its joints; the shares of a vertex count relative to their
/// sum. Returns false when a vertex hangs on a joint that `pose` does not have.
bool skin(const PrimitiveGeometry& geometry, const JointPose& pose, Mesh& mesh);

}  // namespace tavora::studio
