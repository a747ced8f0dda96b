#pragma once

#include <ImathVec.h>

#include "studio/services/mesh_texture.h"
#include "studio/services/scene_index.h"

namespace tavora::studio {

/// What a surface shows at a point by itself, display-referred.
struct BaseColor {
    Imath::V3d color{0, 0, 0};
    double luminosity = 0;  ///< fraction of the colour that shows without light
    double diffuse = 1;     ///< fraction of the light that the colour scatters
    double alpha = 1;       ///< 1 unless the alpha mode is Blend
};

/// What can be worked out about a surface once for all its points.
struct Material {
    const Surface* surface = nullptr;
    AlphaMode alphaMode = AlphaMode::Opaque;  ///< Opaque, too, where the alpha is 1 all over
    Imath::V3d color{1, 1, 1};                ///< display-referred, of the factor alone
    bool isWhite = true;                      ///< the factor leaves colours as they are
    bool isEmissive = false;
    bool isUniform = false;  ///< no texture: the same all over meshes without vertex colours
    BaseColor uniformColor;  ///< there, if so
    double specular = 0;     ///< strength of the glossy reflection under a shader
    unsigned exponent = 1;   ///< of that reflection's lobe
    // The numbers of the surface that the rest was worked out from:
    Imath::V4f baseColor{1, 1, 1, 1};
    Imath::V3f emissive{0, 0, 0};
    float roughness = 1;
};

/// Looks at the alphas of images and vertices for the alpha mode.
Material materialOf(const Surface& surface, const SceneIndex& scene);

/// Whether it is still that of its surface, whose numbers animation may have moved.
bool isCurrent(const Material& material);

/// Alpha of a surface at a point, before its alpha mode: 0..1.
double alphaAt(const SceneIndex& scene, const Surface& surface, const MeshPoint& point);

/// Emission makes the base colour luminous: by its strongest channel, and moves the colour
/// towards its hue by that fraction.
BaseColor baseColorAt(const SceneIndex& scene, const Material& material, const MeshPoint& point);

}  // namespace tavora::studio
