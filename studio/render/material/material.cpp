#include "studio/render/material/material.h"

#include <algorithm>
#include <cmath>

#include "studio/util/color.h"

namespace tavora::studio {
namespace {

Imath::V3d linearOf(const Imath::V3d& encoded) {
    return {toLinear(encoded.x), toLinear(encoded.y), toLinear(encoded.z)};
}

Imath::V3d encodedOf(const Imath::V3d& linear) {
    return {toEncoded(linear.x), toEncoded(linear.y), toEncoded(linear.z)};
}

bool hasTransparentTexels(const Image& image) {
    for (std::size_t i = 3; i < image.rgba.size(); i += 4) {
        if (image.rgba[i] != 255) return true;
    }
    return false;
}

bool hasTransparentVertices(const SceneIndex& scene, const Surface& surface) {
    const auto isClear = [](const Imath::V4f& color) { return color.w < 1.0F; };
    return std::any_of(scene.meshes().begin(), scene.meshes().end(), [&](const SceneMesh& mesh) {
        return mesh.surface == &surface &&
               std::any_of(mesh.mesh->colors.begin(), mesh.mesh->colors.end(), isClear);
    });
}

bool isOpaqueAllOver(const Surface& surface, const SceneIndex& scene) {
    if (surface.alphaMode == AlphaMode::Opaque) return true;
    const auto& texture = surface.baseColorTexture;
    if (surface.baseColor.w < 1.0F || hasTransparentVertices(scene, surface)) return false;
    if (!texture || scene.pyramid(*texture) == nullptr) return true;
    return !hasTransparentTexels(scene.scene().images[static_cast<std::size_t>(texture->image)]);
}

AlphaMode effectiveAlphaMode(const Surface& surface, const SceneIndex& scene) {
    if (isOpaqueAllOver(surface, scene)) return AlphaMode::Opaque;
    return surface.alphaMode == AlphaMode::Mask ? AlphaMode::Mask : AlphaMode::Blend;
}

/// Exponent of a cosine lobe as wide as a microfacet lobe of that roughness:
/// 2 / alpha^2 - 2 with alpha = roughness^2 (Walter et al. 2007, section 5.2), as
/// a whole number.
unsigned lobeExponent(double roughness) {
    const double alpha = std::max(roughness * roughness, 0.01);
    return static_cast<unsigned>(std::lround(std::max(2 / (alpha * alpha) - 2, 1.0)));
}

Imath::V4d vertexColor(const MeshPoint& point) {
    if (point.mesh->colors.empty()) return {1, 1, 1, 1};
    const auto& triangle = point.mesh->triangles[point.triangle];
    Imath::V4d color(0, 0, 0, 0);
    for (std::size_t i = 0; i < 3; ++i)
        color += Imath::V4d(point.mesh->colors[triangle[i]]) * point.weights[i];
    return color;
}

/// Texture, factor and vertex colour multiply as light; a product by white
/// stays what it is to the bit.
Imath::V3d baseColor(const SceneIndex& scene, const Material& material, const MeshPoint& point) {
    const Surface& surface = *material.surface;
    const bool tinted = !point.mesh->colors.empty();
    if (!surface.baseColorTexture && !tinted) return material.color;
    Imath::V3d color(1, 1, 1);
    if (surface.baseColorTexture) {
        const Imath::V4d texel = lookUpTexture(scene, *surface.baseColorTexture, point);
        color = {texel.x, texel.y, texel.z};
        if (material.isWhite && !tinted) return color;
        color = linearOf(color);
    }
    const Imath::V4f& factor = surface.baseColor;
    color *= Imath::V3d(Imath::V3f(factor.x, factor.y, factor.z));
    if (tinted) {
        const Imath::V4d tint = vertexColor(point);
        color *= Imath::V3d(tint.x, tint.y, tint.z);
    }
    return encodedOf(color);
}

/// Display-referred.
Imath::V3d emission(const SceneIndex& scene, const Surface& surface, const MeshPoint& point) {
    Imath::V3d light(surface.emissive);
    if (surface.emissiveTexture) {
        const Imath::V4d texel = lookUpTexture(scene, *surface.emissiveTexture, point);
        light *= linearOf({texel.x, texel.y, texel.z});
    }
    return encodedOf(light);
}

void addEmission(BaseColor& base, const Imath::V3d& emitted) {
    const double strength = std::max({emitted.x, emitted.y, emitted.z});
    if (!(strength > 0)) return;
    const double fraction = std::min(strength, 1.0);
    base.color = base.color * (1 - fraction) + emitted * (fraction / strength);
    base.luminosity = strength;
}

BaseColor uniformColorOf(const Material& material, const SceneIndex& scene) {
    const Mesh withoutColors;
    MeshPoint point;
    point.mesh = &withoutColors;
    return baseColorAt(scene, material, point);
}

}  // namespace

Material materialOf(const Surface& surface, const SceneIndex& scene) {
    Material material;
    material.surface = &surface;
    material.baseColor = surface.baseColor;
    material.emissive = surface.emissive;
    material.roughness = surface.roughness;
    material.alphaMode = effectiveAlphaMode(surface, scene);
    const Imath::V3f factor(surface.baseColor.x, surface.baseColor.y, surface.baseColor.z);
    material.color = encodedOf(Imath::V3d(factor));
    material.isWhite = factor == Imath::V3f(1.0F);
    material.isEmissive = surface.emissive != Imath::V3f(0.0F);
    const auto roughness = static_cast<double>(surface.roughness);
    material.specular = (1 - roughness) * (1 - roughness);
    material.exponent = lobeExponent(roughness);
    material.isUniform = !surface.baseColorTexture && !surface.emissiveTexture;
    if (material.isUniform) material.uniformColor = uniformColorOf(material, scene);
    return material;
}

bool isCurrent(const Material& material) {
    const Surface& surface = *material.surface;
    return material.baseColor == surface.baseColor && material.emissive == surface.emissive &&
           material.roughness == surface.roughness;
}

double alphaAt(const SceneIndex& scene, const Surface& surface, const MeshPoint& point) {
    double alpha = static_cast<double>(surface.baseColor.w) * vertexColor(point).w;
    if (surface.baseColorTexture) {
        alpha *= lookUpTexture(scene, *surface.baseColorTexture, point).w;
    }
    return std::clamp(alpha, 0.0, 1.0);
}

BaseColor baseColorAt(const SceneIndex& scene, const Material& material, const MeshPoint& point) {
    BaseColor base;
    base.color = baseColor(scene, material, point);
    if (material.isEmissive) addEmission(base, emission(scene, *material.surface, point));
    if (material.surface->unlit) {
        base.luminosity = 1;
        base.diffuse = 0;
    }
    if (material.alphaMode == AlphaMode::Blend)
        base.alpha = alphaAt(scene, *material.surface, point);
    return base;
}

}  // namespace tavora::studio
