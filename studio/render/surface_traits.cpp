#include "studio/render/surface_traits.h"

#include <algorithm>
#include <cmath>

#include "studio/util/color.h"

namespace tavora::studio {
namespace {

Imath::V3d mapChannels(const Imath::V3d& v, double (*map)(double)) {
    return {map(v.x), map(v.y), map(v.z)};
}

bool hasClearTexels(const Image& image) {
    for (std::size_t i = 3; i < image.rgba.size(); i += 4) {
        if (image.rgba[i] != 255) return true;
    }
    return false;
}

bool hasClearVertices(const SceneIndex& scene, const Surface& surface) {
    const auto isClear = [](const Imath::V4f& color) { return color.w < 1.0F; };
    return std::any_of(scene.meshes().begin(), scene.meshes().end(), [&](const SceneMesh& mesh) {
        return mesh.surface == &surface &&
               std::any_of(mesh.mesh->colors.begin(), mesh.mesh->colors.end(), isClear);
    });
}

bool isSolid(const Surface& surface, const SceneIndex& scene) {
    if (surface.alphaMode == AlphaMode::Opaque) return true;
    const auto& texture = surface.baseColorTexture;
    if (surface.baseColor.w < 1.0F || hasClearVertices(scene, surface)) return false;
    if (!texture || scene.pyramid(*texture) == nullptr) return true;
    return !hasClearTexels(scene.scene().images[static_cast<std::size_t>(texture->image)]);
}

Cover coverOf(const Surface& surface, const SceneIndex& scene) {
    if (isSolid(surface, scene)) return Cover::Solid;
    return surface.alphaMode == AlphaMode::Mask ? Cover::CutOut : Cover::Clear;
}

/// Exponent of a cosine lobe as wide as a microfacet lobe of that roughness:
/// 2 / alpha^2 - 2 with alpha = roughness^2 (Walter et al. 2007, section 5.2), as
/// a whole number.
unsigned lobeExponent(double roughness) {
    const double alpha = std::max(roughness * roughness, 0.01);
    return static_cast<unsigned>(std::lround(std::max(2 / (alpha * alpha) - 2, 1.0)));
}

Imath::V4d vertexColor(const MeshPoint& place) {
    if (place.mesh->colors.empty()) return {1, 1, 1, 1};
    const auto& triangle = place.mesh->triangles[place.triangle];
    Imath::V4d color(0, 0, 0, 0);
    for (std::size_t i = 0; i < 3; ++i)
        color += Imath::V4d(place.mesh->colors[triangle[i]]) * place.weights[i];
    return color;
}

/// Texture, factor and vertex colour multiply as light; a product by white
/// stays what it is to the bit.
Imath::V3d baseColor(const SceneIndex& scene, const SurfaceTraits& traits, const MeshPoint& place) {
    const Surface& surface = *traits.surface;
    const bool tinted = !place.mesh->colors.empty();
    if (!surface.baseColorTexture && !tinted) return traits.color;
    Imath::V3d color(1, 1, 1);
    if (surface.baseColorTexture) {
        const Imath::V4d texel = lookUpTexture(scene, *surface.baseColorTexture, place);
        color = {texel.x, texel.y, texel.z};
        if (traits.white && !tinted) return color;
    }
    color = mapChannels(color, toLinear);
    const Imath::V4f& factor = surface.baseColor;
    color *= Imath::V3d(Imath::V3f(factor.x, factor.y, factor.z));
    if (tinted) {
        const Imath::V4d tint = vertexColor(place);
        color *= Imath::V3d(tint.x, tint.y, tint.z);
    }
    return mapChannels(color, toEncoded);
}

/// Display-referred.
Imath::V3d emission(const SceneIndex& scene, const Surface& surface, const MeshPoint& place) {
    Imath::V3d light(surface.emissive);
    if (surface.emissiveTexture) {
        const Imath::V4d texel = lookUpTexture(scene, *surface.emissiveTexture, place);
        light *= mapChannels({texel.x, texel.y, texel.z}, toLinear);
    }
    return mapChannels(light, toEncoded);
}

void addGlow(OwnColor& own, const Imath::V3d& glow) {
    const double strength = std::max({glow.x, glow.y, glow.z});
    if (!(strength > 0)) return;
    const double share = std::min(strength, 1.0);
    own.color = own.color * (1 - share) + glow * (share / strength);
    own.luminosity = strength;
}

OwnColor evenColor(const SurfaceTraits& traits, const SceneIndex& scene) {
    const Mesh withoutColors;
    MeshPoint place;
    place.mesh = &withoutColors;
    return ownColor(scene, traits, place);
}

}  // namespace

SurfaceTraits traitsOf(const Surface& surface, const SceneIndex& scene) {
    SurfaceTraits traits;
    traits.surface = &surface;
    traits.baseColor = surface.baseColor;
    traits.emissive = surface.emissive;
    traits.roughness = surface.roughness;
    traits.cover = coverOf(surface, scene);
    const Imath::V3f factor(surface.baseColor.x, surface.baseColor.y, surface.baseColor.z);
    traits.color = mapChannels(Imath::V3d(factor), toEncoded);
    traits.white = factor == Imath::V3f(1.0F);
    traits.glows = surface.emissive != Imath::V3f(0.0F);
    const auto roughness = static_cast<double>(surface.roughness);
    traits.specular = (1 - roughness) * (1 - roughness);
    traits.exponent = lobeExponent(roughness);
    traits.isEven = !surface.baseColorTexture && !surface.emissiveTexture;
    if (traits.isEven) traits.even = evenColor(traits, scene);
    return traits;
}

bool isCurrent(const SurfaceTraits& traits) {
    const Surface& surface = *traits.surface;
    return traits.baseColor == surface.baseColor && traits.emissive == surface.emissive &&
           traits.roughness == surface.roughness;
}

double alphaAt(const SceneIndex& scene, const Surface& surface, const MeshPoint& place) {
    double alpha = static_cast<double>(surface.baseColor.w) * vertexColor(place).w;
    if (surface.baseColorTexture) {
        alpha *= lookUpTexture(scene, *surface.baseColorTexture, place).w;
    }
    return std::clamp(alpha, 0.0, 1.0);
}

OwnColor ownColor(const SceneIndex& scene, const SurfaceTraits& traits, const MeshPoint& place) {
    OwnColor own;
    own.color = baseColor(scene, traits, place);
    if (traits.glows) addGlow(own, emission(scene, *traits.surface, place));
    if (traits.surface->unlit) {
        own.luminosity = 1;
        own.diffuse = 0;
    }
    if (traits.cover == Cover::Clear) own.alpha = alphaAt(scene, *traits.surface, place);
    return own;
}

}  // namespace tavora::studio
