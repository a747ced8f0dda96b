#pragma once

#include <vector>

#include "studio/scene/scene.h"

namespace tavora::studio {

/// The tangents of `mesh` for the normal map `use`, made in the MikkTSpace way,
/// so that maps fit that were baked in a program which makes them so: corners
/// with the same position, normal and UV, in triangles that meet at an edge and
/// mirror the texture alike, share the mean of their triangles' directions of u,
/// each laid into the plane of the normal and weighted by the angle there.
/// Mikkelsen, "Simulation of Wrinkled Surfaces Revisited" (2008), section 3.
/// Empty when the mesh has no such UVs, and 0 at corners where they tell nothing.
/// The normals must be unit vectors. Any thread.
std::vector<CornerTangents> makeTangents(const Mesh& mesh, const TextureUse& use);

/// The tangents at vertices, as a file stores them, by corner: brought to unit
/// length, or 0 where there is none.
std::vector<CornerTangents> tangentsOfVertices(const Mesh& mesh,
                                               const std::vector<Imath::V4f>& vertices);

}  // namespace tavora::studio
