#pragma once

#include <ImathMatrix.h>
#include <optional>
#include <vector>

#include "studio/scene/gltf/source.h"

namespace tavora::studio {

/// Where the nodes are in the world.
struct PlacedNodes {
    std::vector<Imath::M44d> toWorld;  ///< of every node, in the scene or not
    std::vector<int> shown;            ///< nodes of the scene, parents before children
    std::vector<bool> visible;         ///< of every node: neither it nor a parent is hidden
};

/// As the document places them. Throws Error for nodes with two parents, cycles, places
/// beyond all numbers.
PlacedNodes placeNodes(const GltfSource& source);

/// Rotation and translation of `m` without its scale; right-handed always.
Imath::M44d rigid(const Imath::M44d& m);

/// `m` made invertible where it squeezes the world flat: what it squeezed gets a
/// millionth of the size instead, so that normals keep a direction. None when
/// nothing is left to see, a line or a point.
std::optional<Imath::M44d> unflattened(const Imath::M44d& m);

}  // namespace tavora::studio
