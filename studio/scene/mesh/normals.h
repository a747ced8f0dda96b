#pragma once

#include <ImathVec.h>

#include "studio/scene/scene.h"

namespace tavora::studio {

/// `v` normalized, without overflow or underflow for very long or short vectors;
/// `otherwise` when its length is 0 or not finite.
Imath::V3f unit(const Imath::V3d& v, const Imath::V3f& otherwise);

/// The unit normal of triangle `t`, on the side from which its corners run
/// counter-clockwise; +y when it has no area.
Imath::V3f flatNormal(const Mesh& mesh, std::size_t t);

/// Gives every vertex the normal of its triangle. No two triangles may share a vertex.
void makeFlatNormals(Mesh& mesh);

/// Normalizes all normals. One without a length is replaced by the normal of a triangle that
/// uses the vertex, or by +y when no triangle does.
void repairNormals(Mesh& mesh);

/// Whether a vertex normal differs from its triangle's normal by more than rounding.
bool isSmooth(const Mesh& mesh);

}  // namespace tavora::studio
