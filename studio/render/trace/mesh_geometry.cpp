#include "studio/render/trace/mesh_geometry.h"

namespace tavora::studio {
namespace {

Imath::V3d row(const Imath::M44d& matrix, int i) {
    return {matrix[i][0], matrix[i][1], matrix[i][2]};
}

/// The cofactors of the upper left part, which transform normals also where
/// the matrix flattens space and has no inverse.
/// `sign` is -1 where it mirrors space, and would turn them inwards.
Imath::M33d normalMatrix(const Imath::M44d& matrix, double sign) {
    const Imath::V3d x = row(matrix, 1).cross(row(matrix, 2)) * sign;
    const Imath::V3d y = row(matrix, 2).cross(row(matrix, 0)) * sign;
    const Imath::V3d z = row(matrix, 0).cross(row(matrix, 1)) * sign;
    return {x.x, x.y, x.z, y.x, y.y, y.z, z.x, z.y, z.z};
}

/// Imath multiplies row vectors; the records of modules hold one row for each
/// component of the result.
void fillRows(const Imath::M44d& matrix, double rows[9]) {
    for (int i = 0; i < 3; ++i) {
        for (int j = 0; j < 3; ++j)
            rows[3 * i + j] = matrix[j][i];
    }
}

void placeVertices(const Mesh& mesh, const Imath::M44d& objectToWorld,
                   std::vector<Imath::V3f>& vertices) {
    vertices.clear();
    vertices.reserve(mesh.positions.size() + 1);
    for (const Imath::V3f& position : mesh.positions)
        vertices.emplace_back(Imath::V3d(position) * objectToWorld);
    vertices.emplace_back(0.0F);
}

}  // namespace

MeshGeometry placeMesh(const SceneMesh& source, std::size_t number, bool isInstance) {
    MeshGeometry geometry;
    geometry.number = number;
    geometry.isInstance = isInstance;
    replaceMesh(source, geometry);
    return geometry;
}

void replaceMesh(const SceneMesh& source, MeshGeometry& geometry) {
    const Object& object = *source.object;
    geometry.source = &source;
    if (!geometry.isInstance) placeVertices(*source.mesh, object.objectToWorld, geometry.vertices);
    geometry.worldToObject = object.objectToWorld.inverse();
    // Of a mesh that hangs on mirrored joints the triangles are turned, not the space.
    geometry.facing = object.mirrored ? -1 : 1;
    geometry.handedness = object.objectToWorld.determinant() < 0 ? -1 : 1;
    geometry.normalToWorld = normalMatrix(object.objectToWorld, geometry.handedness);
    fillRows(geometry.worldToObject, geometry.objectTransform);
    fillRows(object.objectToWorld, geometry.worldTransform);
}

}  // namespace tavora::studio
