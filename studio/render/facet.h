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
    int surfaceIndex() const { return source().surfaceIndex; }
};

/// The side of the triangle that `ray` meets at `hit`.
Facet facetAt(const RayScene& scene, const Ray& ray, const HitKey& hit);

/// Whether facetAt() would give `facet` once more, the rays' start aside.
bool isSameFacet(const Facet& facet, const RayScene& scene, const Ray& ray, const HitKey& hit);

/// Moves the start of the rays.
void setEye(const Imath::V3d& eye, Facet& facet);

/// facetAt() into `facet`, at less cost where that is the same.
void setFacet(const RayScene& scene, const Ray& ray, const HitKey& hit, Facet& facet);

}  // namespace tavora::studio
