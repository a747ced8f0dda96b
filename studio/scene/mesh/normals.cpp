#include "studio/scene/mesh/normals.h"

#include <algorithm>
#include <cmath>

namespace tavora::studio {
namespace {

using Imath::V3d;
using Imath::V3f;

// Rounding of the cosine between a stored normal and the flat one, both rounded to float.
constexpr double kCosineTolerance = 1e-6;

/// A normal of triangle `t` whose length is twice the triangle's area.
V3d areaVector(const Mesh& mesh, std::size_t t) {
    const auto& corners = mesh.triangles[t];
    const V3d a(mesh.positions[corners[0]]);
    return (V3d(mesh.positions[corners[1]]) - a).cross(V3d(mesh.positions[corners[2]]) - a);
}

}  // namespace

V3f unit(const V3d& v, const V3f& otherwise) {
    const double largest = std::max({std::abs(v.x), std::abs(v.y), std::abs(v.z)});
    if (!(largest > 0) || !std::isfinite(largest)) return otherwise;
    const V3d scaled = v / largest;
    return V3f(scaled / scaled.length());
}

V3f flatNormal(const Mesh& mesh, std::size_t t) {
    return unit(areaVector(mesh, t), V3f(0, 1, 0));
}

void makeFlatNormals(Mesh& mesh) {
    mesh.normals.assign(mesh.positions.size(), V3f(0, 1, 0));
    for (std::size_t t = 0; t < mesh.triangles.size(); ++t) {
        const V3f n = flatNormal(mesh, t);
        for (std::uint32_t i : mesh.triangles[t])
            mesh.normals[i] = n;
    }
}

void repairNormals(Mesh& mesh) {
    bool all = true;
    for (V3f& n : mesh.normals) {
        n = unit(V3d(n), V3f(0));
        all = all && n != V3f(0);
    }
    if (all) return;
    for (std::size_t t = 0; t < mesh.triangles.size(); ++t) {
        for (std::uint32_t i : mesh.triangles[t]) {
            if (mesh.normals[i] == V3f(0)) mesh.normals[i] = flatNormal(mesh, t);
        }
    }
    std::replace(mesh.normals.begin(), mesh.normals.end(), V3f(0), V3f(0, 1, 0));
}

bool isSmooth(const Mesh& mesh) {
    for (std::size_t t = 0; t < mesh.triangles.size(); ++t) {
        if (!(areaVector(mesh, t).length2() > 0)) continue;
        const V3d flat(flatNormal(mesh, t));
        for (std::uint32_t i : mesh.triangles[t]) {
            if (V3d(mesh.normals[i]).dot(flat) < 1 - kCosineTolerance) return true;
        }
    }
    return false;
}

}  // namespace tavora::studio
