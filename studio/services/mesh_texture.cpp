#include "studio/services/mesh_texture.h"

#include <cmath>

namespace tavora::studio {
namespace {

struct UvCorners {
    Imath::V2d uv[3];
};

UvCorners cornersOf(const TextureUse& use, const MeshPoint& point) {
    UvCorners corners;
    const auto set = static_cast<std::size_t>(use.uvSet);
    if (set >= point.mesh->uvs.size() || point.mesh->uvs[set].empty()) return corners;
    const auto& triangle = point.mesh->triangles[point.triangle];
    for (std::size_t i = 0; i < 3; ++i)
        corners.uv[i] = Imath::V2d(point.mesh->uvs[set][triangle[i]]);
    return corners;
}

/// The point's footprint in transformed UV units: its width in the world times the square
/// root of the ratio of the triangle's areas in UV and in the world.
double uvFootprint(const TextureUse& use, const MeshPoint& point, const UvCorners& corners) {
    if (!(point.worldArea > 0)) return 0;
    const Imath::V2d a = corners.uv[1] - corners.uv[0];
    const Imath::V2d b = corners.uv[2] - corners.uv[0];
    const double scale = std::abs(static_cast<double>(use.scale.x * use.scale.y));
    const double uvArea = 0.5 * std::abs(a.x * b.y - a.y * b.x) * scale;
    return point.footprint * std::sqrt(uvArea / point.worldArea);
}

}  // namespace

double triangleArea(const Imath::V3d& a, const Imath::V3d& b, const Imath::V3d& c) {
    return 0.5 * (b - a).cross(c - a).length();
}

Imath::V4d lookUpTexture(const SceneIndex& scene, const TextureUse& use, const MeshPoint& point) {
    const TexturePyramid* pyramid = scene.pyramid(use);
    if (pyramid == nullptr) return Imath::V4d(1, 1, 1, 1);
    const UvCorners corners = cornersOf(use, point);
    const Imath::V2d uv = corners.uv[0] * point.weights[0] + corners.uv[1] * point.weights[1] +
                          corners.uv[2] * point.weights[2];
    return pyramid->lookUp(use, transformUv(use, uv), uvFootprint(use, point, corners));
}

}  // namespace tavora::studio
