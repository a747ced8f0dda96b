#pragma once

#include <ImathVec.h>
#include <array>
#include <cstdint>

#include "studio/render/mesh_geometry.h"
#include "studio/render/ray_scene.h"
#include "studio/services/mesh_texture.h"

namespace tavora::studio {

/// The geometry at a hit, in the world. Normals are unit vectors on the side of
/// the surface that is seen: the front of a single-sided one, the viewer's side
/// of a double-sided one.
struct SurfacePoint {
    const MeshGeometry* geometry = nullptr;
    std::uint32_t triangle = 0;
    std::array<std::uint32_t, 3> vertices{};  ///< in the mesh
    std::array<Imath::V3d, 3> corners{};
    std::array<Imath::V3d, 3> cornerNormals{};  ///< all `geometricNormal` on flat meshes
    double weights[3] = {1, 0, 0};              ///< barycentric, sum 1
    Imath::V3d position{0, 0, 0};
    Imath::V3d geometricNormal{0, 0, 0};
    Imath::V3d normal{0, 0, 0};  ///< interpolated
    double distance = 0;
    double spotSize = 0;
    double area = 0;  ///< of the triangle

    TexturePlace texturePlace() const;
};

/// `ray` must be the one that found `hit`.
SurfacePoint surfacePoint(const RayScene& scene, const Ray& ray, const HitKey& hit);

/// surfacePoint() into `point`, at less cost where `before` is on the same triangle.
void surfacePointLike(const SurfacePoint& before, const RayScene& scene, const Ray& ray,
                      const HitKey& hit, SurfacePoint& point);

/// Where shadow rays from `point` start: lifted off its polygon, as far as
/// rounding needs, and where the mesh is smooth and bulges outwards up to the
/// surface that its vertex normals suggest, so that the polygons of a coarse
/// mesh throw no shadows on one another along the terminator.
/// Formula: Hanika, "Hacking the Shadow Terminator", Ray Tracing Gems II (2021).
Imath::V3d shadowStart(const SurfacePoint& point);

/// Distance that rounding may put between a surface and a ray that starts on
/// it, for coordinates of that magnitude.
double roundingMargin(double magnitude);

/// Largest coordinate, without sign.
double magnitudeOf(const Imath::V3d& v);

}  // namespace tavora::studio
