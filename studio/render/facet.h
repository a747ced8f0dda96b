#pragma once

#include <ImathVec.h>
#include <array>
#include <cstdint>

#include "studio/render/mesh_geometry.h"
#include "studio/render/ray_scene.h"

namespace tavora::studio {

/// One side of a triangle. Immutable; any thread.
struct FacetKey {
    const MeshGeometry* geometry = nullptr;  ///< null: none
    std::uint32_t triangle = 0;
    bool isBack = false;

    bool operator==(const FacetKey&) const = default;
};

/// One side of a triangle in the world, with all that hits there share whose
/// rays start at one place. Normals are unit vectors on the side that is seen:
/// the front of a single-sided surface, the viewer's side of a double-sided one.
struct Facet {
    FacetKey key;
    std::uint32_t mesh = 0;                   ///< in RayScene
    int surface = 0;                          ///< in Scene::surfaces
    bool isSmooth = false;                    ///< normals are interpolated
    bool isMapped = false;                    ///< a normal map turns them
    bool showsBack = false;                   ///< both of its sides are seen
    const OwnColor* even = nullptr;           ///< own colour, if it is the same all over the mesh
    std::array<std::uint32_t, 3> vertices{};  ///< in the mesh
    std::array<Imath::V3d, 3> corners{};
    std::array<Imath::V3d, 3> cornerNormals{};  ///< all `normal` on flat meshes
    Imath::V3d normal{0, 0, 0};
    double area = 0;
    double magnitude = 0;  ///< largest coordinate of a corner, without sign

    Imath::V3d eye{0, 0, 0};  ///< where the rays start
    /// A ray's direction, multiplied with these, tells where it meets the
    /// triangle: both weights times the scale, and the scale.
    Imath::V3d toWeight1{0, 0, 0};
    Imath::V3d toWeight2{0, 0, 0};
    Imath::V3d toScale{0, 0, 0};

    const SceneMesh& source() const { return *key.geometry->source; }
};

/// The side of the triangle that `ray` meets at `hit`.
Facet facetAt(const RayScene& scene, const Ray& ray, const Hit& hit);

/// Whether facetAt() would give `facet`, of the same scene, once more, the rays'
/// start aside. A triangle without area faces each ray.
inline bool isSameFacet(const Facet& facet, const Ray& ray, const Hit& hit) {
    if (facet.key.triangle != hit.triangle || facet.mesh != hit.mesh || !(facet.area > 0)) {
        return false;
    }
    if (!facet.showsBack) return true;
    const Imath::V3d front = facet.key.isBack ? -facet.normal : facet.normal;
    return facet.key.isBack == (front.dot(ray.direction) > 0);
}

/// Moves the start of the rays.
void setEye(const Imath::V3d& eye, Facet& facet);

/// facetAt() into `facet`, at less cost where that is the same.
void setFacet(const RayScene& scene, const Ray& ray, const Hit& hit, Facet& facet);

}  // namespace tavora::studio
