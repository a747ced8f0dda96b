#pragma once

#include <ImathVec.h>

#include "studio/services/scene_index.h"

namespace tavora::studio {

/// A point on a triangle, with what is needed to sample a texture there.
struct MeshPoint {
    const Mesh* mesh = nullptr;
    std::uint32_t triangle = 0;
    double weights[3] = {1, 0, 0};  ///< barycentric
    double footprint = 0;           ///< width to average over, metres
    double worldArea = 0;           ///< of the triangle in the world, square metres
};

/// The area of a triangle with these corners.
double triangleArea(const Imath::V3d& a, const Imath::V3d& b, const Imath::V3d& c);

/// RGBA of a texture at a point, as stored (colour sRGB-encoded); white when the image is
/// missing. A mesh without the texture's UV set has the UV (0, 0) everywhere. Any thread.
Imath::V4d lookUpTexture(const SceneIndex& scene, const TextureUse& use, const MeshPoint& point);

}  // namespace tavora::studio
