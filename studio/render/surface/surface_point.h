#pragma once

#include <ImathVec.h>

#include "studio/render/surface/facet.h"
#include "studio/services/mesh_texture.h"

namespace tavora::studio {

/// The geometry where a ray hits a surface, in the world.
struct SurfacePoint {
    const Facet* facet = nullptr;
    double weights[3] = {1, 0, 0};  ///< barycentric, sum 1
    Imath::V3d position{0, 0, 0};
    /// Both unit vectors on the side that is seen: that which is shaded, turned by the
    /// surface's normal map, and the interpolated one, which tells what light can reach the
    /// surface at all.
    Imath::V3d normal{0, 0, 0};
    Imath::V3d smoothNormal{0, 0, 0};
    double distance = 0;   ///< along the ray
    double footprint = 0;  ///< diameter of the ray's cone there

    const SceneMesh& source() const { return facet->source(); }
    int surfaceIndex() const { return facet->surface; }
    MeshPoint meshPoint() const;
};

/// Sets `point` to where `ray`, which is known to hit `facet`, does so; as though there were
/// no normal map. `facet` must outlive it.
void setSurfacePoint(const Facet& facet, const Ray& ray, SurfacePoint& point);

/// Where shadow rays from `point` start: lifted off its polygon as far as rounding needs, and
/// where the mesh is smooth and bulges outwards, up to the surface that its vertex normals
/// suggest, so that the polygons of a coarse mesh cast no shadows on one another along the
/// terminator. Formula: Hanika, "Hacking the Shadow Terminator", Ray Tracing Gems II (2021).
Imath::V3d shadowRayOrigin(const SurfacePoint& point);

/// A ray from there that passes what a surface without self-shadow does; without direction.
Ray shadowRayStart(const SurfacePoint& point);

/// Whether the surface itself is in the way of light that travels along `direction`: it
/// comes from behind both the polygon and the interpolated normal.
inline bool isBehind(const SurfacePoint& point, const Imath::V3d& direction) {
    return direction.dot(point.smoothNormal) >= 0 && direction.dot(point.facet->normal) >= 0;
}

}  // namespace tavora::studio
