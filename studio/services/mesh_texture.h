#pragma once

#include <ImathVec.h>

#include "studio/services/scene_index.h"

namespace tavora::studio {

/// A place on a triangle, with what a texture look-up there needs.
struct MeshPoint {
    const Mesh* mesh = nullptr;
    std::uint32_t triangle = 0;
    double weights[3] = {1, 0, 0};  ///< barycentric
    double footprint = 0;           ///< width to average over, scene units
    double worldArea = 0;           ///< of the triangle, square scene units
};

/// Area of a triangle.
double triangleArea(const Imath::V3d& a, const Imath::V3d& b, const Imath::V3d& c);

/// RGBA of a texture at a place, as stored; white for an image that is missing.
/// A mesh without the texture's UV set is looked up at (0, 0).
Imath::V4d lookUpTexture(const SceneIndex& scene, const TextureUse& use, const MeshPoint& place);

}  // namespace tavora::studio
