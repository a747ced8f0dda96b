#include "studio/scene/gltf/mesh_deformation.h"

#include <cmath>

#include "studio/scene/mesh/normals.h"

namespace tavora::studio {
namespace {

using Imath::M44d;
using Imath::V3d;
using Imath::V3f;
using Imath::V4f;

/// Transforms a normal by the matrix of cofactors, which has the direction of the inverse
/// transpose and exists even for a singular matrix.
V3f transformedNormal(const V3f& normal, const M44d& m) {
    const V3d a(m[0][0], m[0][1], m[0][2]);
    const V3d b(m[1][0], m[1][1], m[1][2]);
    const V3d c(m[2][0], m[2][1], m[2][2]);
    const V3d n(normal);
    const V3d cofactors = b.cross(c) * n.x + c.cross(a) * n.y + a.cross(b) * n.z;
    return unit(a.dot(b.cross(c)) < 0 ? -cofactors : cofactors, normal);
}

/// Transforms a tangent like any direction in the surface. A transform that mirrors puts the
/// bitangent on the other side.
V4f transformedTangent(const V4f& tangent, const M44d& m, bool mirrors) {
    const V3d along = V3d(m[0][0], m[0][1], m[0][2]) * static_cast<double>(tangent.x) +
                      V3d(m[1][0], m[1][1], m[1][2]) * static_cast<double>(tangent.y) +
                      V3d(m[2][0], m[2][1], m[2][2]) * static_cast<double>(tangent.z);
    const V3f direction = unit(along, V3f(0));
    return {direction.x, direction.y, direction.z, mirrors ? -tangent.w : tangent.w};
}

/// The weighted sum of a vertex's joint matrices; `weight` is 0 for a vertex without joints.
struct Blend {
    M44d sum = M44d() * 0.0;
    double weight = 0;

    bool add(const Influences& from, std::size_t v, const std::vector<M44d>& joints) {
        if (v >= from.joints.size()) return true;
        for (std::size_t k = 0; k < 4; ++k) {
            const auto w = static_cast<double>(from.weights[v][static_cast<int>(k)]);
            if (!(w > 0)) continue;
            if (from.joints[v][k] >= joints.size()) return false;
            sum += joints[from.joints[v][k]] * w;
            weight += w;
        }
        return true;
    }
};

void morphTangents(const MorphTarget& target, float weight, Mesh& mesh) {
    if (target.tangents.empty()) return;
    for (std::size_t t = 0; t < mesh.tangents.size(); ++t) {
        for (std::size_t i = 0; i < 3; ++i) {
            const V3f by = target.tangents[mesh.triangles[t][i]] * weight;
            mesh.tangents[t][i] += V4f(by.x, by.y, by.z, 0);
        }
    }
}

void transformTangents(const std::vector<M44d>& matrices, Mesh& mesh) {
    for (std::size_t t = 0; t < mesh.tangents.size(); ++t) {
        for (std::size_t i = 0; i < 3; ++i) {
            const M44d& m = matrices[mesh.triangles[t][i]];
            V4f& tangent = mesh.tangents[t][i];
            tangent = transformedTangent(tangent, m, m.determinant() < 0);
        }
    }
}

}  // namespace

void morph(const PrimitiveGeometry& geometry, const std::vector<double>& weights, Mesh& mesh) {
    for (std::size_t t = 0; t < geometry.targets.size() && t < weights.size(); ++t) {
        const auto w = static_cast<float>(weights[t]);
        if (w == 0 || !std::isfinite(w)) continue;
        const MorphTarget& target = geometry.targets[t];
        for (std::size_t i = 0; i < target.positions.size(); ++i)
            mesh.positions[i] += target.positions[i] * w;
        for (std::size_t i = 0; i < target.normals.size(); ++i)
            mesh.normals[i] += target.normals[i] * w;
        if (!geometry.tangentsMadeFor) morphTangents(target, w, mesh);
    }
}

bool skin(const PrimitiveGeometry& geometry, const JointPose& pose, Mesh& mesh) {
    std::vector<M44d> matrices(mesh.tangents.empty() ? 0 : mesh.positions.size());
    for (std::size_t v = 0; v < mesh.positions.size(); ++v) {
        Blend blend;
        for (const Influences& from : geometry.influences) {
            if (!blend.add(from, v, pose.toWorld)) return false;
        }
        if (!(blend.weight > 0)) continue;
        const M44d m = blend.sum * (1.0 / blend.weight);
        mesh.positions[v] = V3f(V3d(mesh.positions[v]) * m);
        mesh.normals[v] = transformedNormal(mesh.normals[v], m);
        if (!matrices.empty()) matrices[v] = m;
    }
    transformTangents(matrices, mesh);
    return true;
}

}  // namespace tavora::studio
