#include "studio/render/surface/normal_map.h"

#include <algorithm>
#include <cmath>

#include "studio/render/surface/unit_vector.h"

namespace tavora::studio {
namespace {

using Imath::V3d;

/// Of the texel, its parts along tangent, bitangent and normal. No map points below
/// its surface: one that seems to has left the third part out, which then follows
/// from the others.
V3d mappedVector(const Surface& surface, const Imath::V4d& texel) {
    const auto scale = static_cast<double>(surface.normalScale);
    const double x = 2 * texel.x - 1;
    const double y = 2 * texel.y - 1;
    const double z = 2 * texel.z - 1;
    return {x * scale, y * scale, z > 0 ? z : std::sqrt(std::max(1 - x * x - y * y, 0.0))};
}

V3d inWorld(const Imath::V4f& tangent, const Imath::M44d& m) {
    const V3d v(Imath::V3f(tangent.x, tangent.y, tangent.z));
    const V3d moved(v.x * m[0][0] + v.y * m[1][0] + v.z * m[2][0],
                    v.x * m[0][1] + v.y * m[1][1] + v.z * m[2][1],
                    v.x * m[0][2] + v.y * m[1][2] + v.z * m[2][2]);
    return unitOr(moved, V3d(0));
}

/// The front's frame, interpolated.
struct Frame {
    V3d normal{0};
    V3d tangent{0};
    double handedness = 0;  ///< -1 or 1
};

Frame frameAt(const SurfacePoint& point) {
    const Facet& facet = *point.facet;
    const MeshGeometry& geometry = *facet.key.geometry;
    const CornerTangents& tangents = facet.source().mesh->tangents[facet.key.triangle];
    const double side = facet.key.isBack ? -1 : 1;
    Frame frame;
    double mirrored = 0;
    for (std::size_t i = 0; i < 3; ++i) {
        const double weight = point.weights[i];
        frame.normal += facet.cornerNormals[i] * (side * weight);
        frame.tangent += inWorld(tangents[i], facet.source().object->objectToWorld) * weight;
        mirrored += static_cast<double>(tangents[i].w) * weight;
    }
    frame.handedness = (mirrored < 0 ? -1 : 1) * geometry.handedness;
    return frame;
}

}  // namespace

void applyNormalMap(const SceneIndex& scene, SurfacePoint& point) {
    const Surface& surface = *point.source().surface;
    const Imath::V4d texel = lookUpTexture(scene, *surface.normalTexture, point.meshPoint());
    const V3d mapped = mappedVector(surface, texel);
    const Frame frame = frameAt(point);
    const V3d bitangent = frame.normal.cross(frame.tangent) * frame.handedness;
    const V3d front = frame.tangent * mapped.x + bitangent * mapped.y + frame.normal * mapped.z;
    point.normal = unitOr(point.facet->key.isBack ? -front : front, point.smoothNormal);
}

}  // namespace tavora::studio
