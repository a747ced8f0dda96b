#pragma once

#include <ImathMatrix.h>
#include <ImathVec.h>
#include <array>
#include <cstdint>
#include <vector>

#include "studio/services/scene_index.h"

namespace tavora::studio {

/// One part of an object, placed in the world. Immutable; any thread.
struct MeshGeometry {
    const SceneMesh* source = nullptr;
    std::size_t number = 0;  ///< in SceneIndex::meshes()
    /// Its triangles are traced in the object's space and shared with other objects;
    /// else in the world, as its own.
    bool isInstance = false;
    std::vector<Imath::V3f> vertices;  ///< world; one spare at the end, for wide loads; empty
                                       ///< for an instance
    Imath::M44d worldToObject;
    Imath::M33d normalToWorld;       ///< keeps directions right, lengths not
    double objectTransform[9] = {};  ///< rows: world to object, for directions
    double worldTransform[9] = {};   ///< rows: object to world, for directions
    double facing = 1;               ///< -1 when the transform turns triangles inside out
    double handedness = 1;           ///< -1 when it mirrors the object's space
};

/// A vertex, in the world.
inline Imath::V3f vertexOf(const MeshGeometry& geometry, std::uint32_t vertex) {
    if (!geometry.isInstance) return geometry.vertices[vertex];
    return Imath::V3f(Imath::V3d(geometry.source->mesh->positions[vertex]) *
                      geometry.source->object->objectToWorld);
}

/// Of a triangle, in the world.
inline std::array<Imath::V3f, 3> cornersOf(const MeshGeometry& geometry, std::uint32_t triangle) {
    const auto& vertices = geometry.source->mesh->triangles[triangle];
    return {vertexOf(geometry, vertices[0]), vertexOf(geometry, vertices[1]),
            vertexOf(geometry, vertices[2])};
}

/// Of a triangle, in the space in which it is traced.
inline std::array<Imath::V3f, 3> tracedCornersOf(const MeshGeometry& geometry,
                                                 std::uint32_t triangle) {
    if (!geometry.isInstance) return cornersOf(geometry, triangle);
    const Mesh& mesh = *geometry.source->mesh;
    const auto& vertices = mesh.triangles[triangle];
    return {mesh.positions[vertices[0]], mesh.positions[vertices[1]], mesh.positions[vertices[2]]};
}

/// A place in the world, in the object's own space.
inline Imath::V3d toObject(const MeshGeometry& geometry, const Imath::V3d& place) {
    Imath::V3d result;
    // Transforms are affine: the fourth coordinate stays 1.
    const auto& m = geometry.worldToObject;
    result.x = place.x * m[0][0] + place.y * m[1][0] + place.z * m[2][0] + m[3][0];
    result.y = place.x * m[0][1] + place.y * m[1][1] + place.z * m[2][1] + m[3][1];
    result.z = place.x * m[0][2] + place.y * m[1][2] + place.z * m[2][2] + m[3][2];
    return result;
}

/// `source` must outlive the result.
MeshGeometry placeMesh(const SceneMesh& source, std::size_t number, bool isInstance);

/// Makes `geometry` what placeMesh() would give for `source` now, a mesh of as many vertices.
/// Its vertices stay at their address.
void replaceMesh(const SceneMesh& source, MeshGeometry& geometry);

}  // namespace tavora::studio
