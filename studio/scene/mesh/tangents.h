#pragma once

#include <vector>

#include "studio/scene/scene.h"

namespace tavora::studio {

/// Computes the tangents of `mesh` for the normal map `use` by the MikkTSpace method, which
/// baking programs use too. Corners share a tangent when they have the same position, normal
/// and UV and their triangles are connected by edges and mirror the texture alike. The
/// tangent is the mean of the triangles' directions of growing u, each projected into the
/// plane of the normal and weighted by the triangle's angle at the corner.
/// Mikkelsen, "Simulation of Wrinkled Surfaces Revisited" (2008), section 3.
/// Returns nothing when the mesh lacks the UV set, and 0 at corners whose UVs have no
/// direction. The normals must be unit vectors. Any thread.
std::vector<CornerTangents> makeTangents(const Mesh& mesh, const TextureUse& use);

/// Converts tangents by vertex, as a file stores them, to tangents by corner: normalized, or
/// 0 when a vertex has none.
std::vector<CornerTangents> tangentsOfVertices(const Mesh& mesh,
                                               const std::vector<Imath::V4f>& vertices);

}  // namespace tavora::studio
