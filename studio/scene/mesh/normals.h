#pragma once

#include <ImathVec.h>

#include "studio/scene/scene.h"

namespace tavora::studio {

/// `v` brought to length 1, whatever its size; `otherwise` where it has none.
Imath::V3f unit(const Imath::V3d& v, const Imath::V3f& otherwise);

/// The unit normal of triangle `t`, on the side from which it winds
/// counter-clockwise; +y where it has no area.
Imath::V3f flatNormal(const Mesh& mesh, std::size_t t);

/// Gives every vertex the normal of its triangle. No two triangles may share one.
void makeFlatNormals(Mesh& mesh);

/// Brings the normals to unit length; one without length becomes that of a
/// triangle it belongs to.
void repairNormals(Mesh& mesh);

/// Whether a normal differs from that of its triangle by more than rounding.
bool isSmooth(const Mesh& mesh);

}  // namespace tavora::studio
