#include <algorithm>

#include "studio/services/channel_texture.h"
#include "studio/services/mesh_texture.h"
#include "studio/services/service_binding.h"
#include "studio/services/service_tables.h"

namespace tavora::studio {
namespace {

ChannelTexture find(HostTextureId id) {
    const ServiceBinding* binding = ServiceBinding::current();
    return binding == nullptr ? ChannelTexture{} : findTexture(binding->scene().scene(), id);
}

/// Every texture has one layer, with the same identity as the texture.
HostTextureLayerId firstLayer(HostTextureId texture) {
    return reinterpret_cast<HostTextureLayerId>(texture);
}

/// A UV-mapped layer is at the object's origin, without scale and rotation.
int layerParameter(HostTextureLayerId layer, int parameter, void* value) {
    if (find(reinterpret_cast<HostTextureId>(layer)).surface == nullptr) return 0;
    auto* vector = static_cast<double*>(value);
    switch (parameter) {
        case HOST_LAYER_SCALE:
            std::fill_n(vector, 3, 1.0);
            return 1;
        case HOST_LAYER_POSITION:
        case HOST_LAYER_ROTATION:
            std::fill_n(vector, 3, 0.0);
            return 1;
        default:
            return 0;
    }
}

Imath::V3d corner(const HostTexturePoint& point, std::size_t i) {
    const float* p = point.vertexPositions[i];
    return {static_cast<double>(p[0]), static_cast<double>(p[1]), static_cast<double>(p[2])};
}

MeshPoint meshPointOf(const SceneTriangle& triangle, const HostTexturePoint& point) {
    MeshPoint meshPoint;
    meshPoint.mesh = triangle.mesh->mesh;
    meshPoint.triangle = triangle.triangle;
    std::copy_n(point.vertexWeights, 3, meshPoint.weights);
    meshPoint.footprint = point.spotSize;
    meshPoint.worldArea = triangleArea(corner(point, 0), corner(point, 1), corner(point, 2));
    return meshPoint;
}

/// The strength of a channel at a texel, 0..1. Base colour: the texture's alpha. Translucency:
/// the fraction of light that passes through, times the surface's factor.
double strengthOf(const ChannelTexture& texture, const Imath::V4d& texel) {
    if (texture.channel == Channel::BaseColor) return texel.w;
    const double strength =
        texture.surface->translucencyComponent == Component::Alpha ? texel.w : texel.x;
    return strength * static_cast<double>(texture.surface->translucencyFactor);
}

double evaluate(HostTextureId id, const HostTexturePoint* point, double color[3]) {
    std::fill_n(color, 3, 0.0);
    const ChannelTexture texture = find(id);
    if (texture.surface == nullptr || !texture.use()) return 0;
    const SceneIndex& scene = ServiceBinding::current()->scene();
    const SceneTriangle triangle = scene.triangle(point->polygonId);
    if (triangle.mesh == nullptr) return 0;
    const Imath::V4d texel = lookUpTexture(scene, *texture.use(), meshPointOf(triangle, *point));
    color[0] = texel.x;
    color[1] = texel.y;
    color[2] = texel.z;
    return strengthOf(texture, texel);
}

}  // namespace

const HostTextureFunctions kTextureFunctions = {firstLayer, layerParameter, evaluate};

}  // namespace tavora::studio
