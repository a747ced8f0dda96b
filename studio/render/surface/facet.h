#pragma once

#include <ImathVec.h>
#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "studio/render/trace/mesh_geometry.h"
#include "studio/render/trace/ray_scene.h"

namespace tavora::studio {

/// One side of a triangle. Immutable; any thread.
struct FacetKey {
    const MeshGeometry* geometry = nullptr;  ///< null: none
    std::uint32_t triangle = 0;
    bool isBack = false;

    bool operator==(const FacetKey&) const = default;
};

/// What places a ray's hit in a triangle when rays start at one position: with a ray's
/// direction multiplied they are the weights of its second and third corner times a scale.
/// Formula: Moller and Trumbore, "Fast, Minimum Storage Ray/Triangle Intersection" (1997),
/// with the direction taken out of the products.
struct FacetEye {
    Imath::V3d position{0, 0, 0};
    Imath::V3d toWeight1{0, 0, 0};
    Imath::V3d toWeight2{0, 0, 0};
};

/// One side of a triangle in the world, with all that its hits share. Normals are unit
/// vectors on the side that is seen: the front of a single-sided surface, the viewer's side
/// of a double-sided one.
struct Facet {
    FacetKey key;
    std::uint32_t mesh = 0;  ///< in SceneIndex::meshes()
    int surface = 0;         ///< in Scene::surfaces
    bool isSmooth = false;   ///< normals are interpolated
    bool isMapped = false;   ///< a normal map turns them
    bool isDoubleSided = false;
    const BaseColor* uniformColor = nullptr;  ///< base colour, if it is the same all over the mesh
    std::array<std::uint32_t, 3> vertices{};  ///< in the mesh
    std::array<Imath::V3d, 3> corners{};
    std::array<Imath::V3d, 3> cornerNormals{};  ///< all `normal` on flat meshes
    Imath::V3d normal{0, 0, 0};
    double area = 0;
    double magnitude = 0;         ///< largest coordinate of a corner, without sign
    Imath::V3d toScale{0, 0, 0};  ///< with a ray's direction multiplied: FacetEye's scale
    FacetEye eye;                 ///< of the ray that the facet was made for

    const SceneMesh& source() const { return *key.geometry->source; }
};

/// The side of the triangle that `ray` hits at `hit`.
Facet facetAt(const RayScene& scene, const Ray& ray, const Hit& hit);

FacetEye eyeOf(const Facet& facet, const Imath::V3d& position);

/// The facets of one scene that were hit last, found again by their triangle. One thread at a
/// time.
class FacetCache {
  public:
    /// At least `capacity` facets are kept. `scene` must outlive it.
    FacetCache(const RayScene& scene, std::size_t capacity);

    /// Makes sure that the next `count` calls of numberAt() leave each other's results alone.
    void reserve(std::size_t count);

    /// The number of facetAt(). It stands for that facet until reserve() is called.
    std::uint32_t numberAt(const Ray& ray, const Hit& hit);
    const Facet& operator[](std::uint32_t number) const { return facets_[number]; }
    std::size_t capacity() const { return facets_.capacity(); }

  private:
    std::uint32_t& slotOf(const Hit& hit);

    const RayScene* scene_;
    std::vector<Facet> facets_;         ///< never grows beyond its capacity
    std::vector<std::uint32_t> slots_;  ///< index in `facets_` by hash of the triangle
};

}  // namespace tavora::studio
