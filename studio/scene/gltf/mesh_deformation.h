#pragma once

#include <ImathMatrix.h>
#include <vector>

#include "studio/scene/gltf/primitive.h"

namespace tavora::studio {

/// The joints of a skin at a time.
struct JointPose {
    std::vector<Imath::M44d> toWorld;  ///< by joint: from the mesh in its bind pose to the world
    bool mirrored = false;             ///< most of these turn triangles inside out
};

/// Adds the morph targets of `geometry` to `mesh`, a copy of its mesh; targets after the last
/// of `weights` have weight 0. Normals and tangents may get another length; tangents that
/// were computed, not read, do not change.
void morph(const PrimitiveGeometry& geometry, const std::vector<double>& weights, Mesh& mesh);

/// Deforms `mesh` by its joints (linear blend skinning); a vertex's weights are divided by
/// their sum. Returns false when a vertex refers to a joint that `pose` does not have.
bool skin(const PrimitiveGeometry& geometry, const JointPose& pose, Mesh& mesh);

}  // namespace tavora::studio
