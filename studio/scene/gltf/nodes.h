#pragma once

#include <ImathMatrix.h>
#include <optional>
#include <vector>

#include "studio/scene/gltf/source.h"

namespace tavora::studio {

/// The world transforms of a file's nodes.
struct PlacedNodes {
    std::vector<Imath::M44d> toWorld;  ///< by node, also of nodes outside the scene
    std::vector<int> shown;            ///< nodes of the scene, parents before children
    std::vector<bool> visible;         ///< by node: neither it nor an ancestor is hidden
};

/// Computes the transforms that the document gives its nodes now. Throws Error for nodes with
/// two parents, cycles, and transforms that are not finite.
PlacedNodes placeNodes(const GltfSource& source);

/// Rotation and translation of `m` without its scale; always right-handed.
Imath::M44d rigid(const Imath::M44d& m);

/// Makes a transform that flattens geometry to a plane invertible: the lost axis gets a
/// millionth of the size of the longest, so that normals have a direction. Returns other
/// transforms as they are, and nothing for one that leaves only a line or a point.
std::optional<Imath::M44d> unflattened(const Imath::M44d& m);

}  // namespace tavora::studio
