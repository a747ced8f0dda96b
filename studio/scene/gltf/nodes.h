#pragma once

#include <ImathMatrix.h>
#include <ImathQuat.h>
#include <ImathVec.h>
#include <optional>
#include <vector>

#include "studio/scene/gltf/source.h"

namespace tavora::studio {

/// How one node stands at a time: relative to its parent, and its morph weights.
struct NodePose {
    std::optional<Imath::M44d> matrix;  ///< in place of the three below
    Imath::V3d scale{1, 1, 1};
    Imath::Quatd rotation;
    Imath::V3d translation{0, 0, 0};
    std::vector<double> weights;  ///< empty: those of the mesh

    /// Finite, or Fault::Scene that names node `index`.
    Imath::M44d toParent(const GltfSource& source, int index) const;
};

/// Every node as the file stores it. Throws Error.
std::vector<NodePose> restPose(const GltfSource& source);

/// Where the nodes are in the world.
struct PlacedNodes {
    std::vector<Imath::M44d> toWorld;  ///< of every node, in the scene or not
    std::vector<int> drawn;            ///< nodes of the scene, parents before children
};

/// Throws Error for nodes with two parents, cycles, places beyond all numbers.
PlacedNodes placeNodes(const GltfSource& source, const std::vector<NodePose>& poses);

/// Rotation and translation of `m` without its scale; right-handed always.
Imath::M44d rigid(const Imath::M44d& m);

/// `m` made invertible where it squeezes the world flat: what it squeezed gets a
/// millionth of the size instead, so that normals keep a direction. None when
/// nothing is left to see, a line or a point.
std::optional<Imath::M44d> unflattened(const Imath::M44d& m);

}  // namespace tavora::studio
