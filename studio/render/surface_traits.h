#pragma once

#include <ImathVec.h>

#include "studio/services/mesh_texture.h"
#include "studio/services/scene_index.h"

namespace tavora::studio {

/// How much of what lies behind a surface shows or lights through.
enum class Cover {
    Solid,   ///< nothing
    CutOut,  ///< all where its alpha is below the cut-off, else nothing
    Clear    ///< by its alpha
};

/// A surface's own look at a place, display-referred.
struct OwnColor {
    Imath::V3d color{0, 0, 0};
    double luminosity = 0;  ///< share of the colour that shows without light
    double diffuse = 1;     ///< share of the light that the colour scatters
    double alpha = 1;       ///< 1 unless the surface is clear
};

/// What can be worked out about a surface once for all its points.
struct SurfaceTraits {
    const Surface* surface = nullptr;
    Cover cover = Cover::Solid;
    Imath::V3d color{1, 1, 1};  ///< display-referred, of the factor alone
    bool white = true;          ///< the factor leaves colours as they are
    bool glows = false;         ///< has emission
    bool isEven = false;        ///< no texture: the same all over meshes without vertex colours
    OwnColor even;              ///< there, if so
    Imath::V4f baseColor{1, 1, 1, 1};  ///< of the surface, as the next two, which the rest
    Imath::V3f emissive{0, 0, 0};      ///< here follows from
    float roughness = 1;
    double specular = 0;    ///< strength of the glossy reflection under a shader
    unsigned exponent = 1;  ///< of that reflection's lobe
};

/// `image` alphas count: a surface that could be clear but nowhere is, is solid.
SurfaceTraits traitsOf(const Surface& surface, const SceneIndex& scene);

/// Whether they still are the surface's, whose numbers animation may have moved.
bool isCurrent(const SurfaceTraits& traits);

/// Opacity of a surface at a place, before its alpha mode: 0..1.
double alphaAt(const SceneIndex& scene, const Surface& surface, const MeshPoint& place);

/// Emission makes the own colour luminous: by its strongest channel, and moves
/// the colour towards its hue by that share.
OwnColor ownColor(const SceneIndex& scene, const SurfaceTraits& traits, const MeshPoint& place);

}  // namespace tavora::studio
