#pragma once

#include "studio/render/surface/surface_point.h"
#include "studio/services/scene_index.h"

namespace tavora::studio {

/// Turns the shading normal of `point`, which is on a mapped facet, as the
/// surface's normal map says. Where it says nothing, since the UVs have no
/// direction there, the interpolated normal stays. On the back of a surface the
/// result is the front's, turned round.
/// Frame: normals and tangents interpolated without being brought to unit length,
/// as MikkTSpace has it, so that baked maps fit.
void applyNormalMap(const SceneIndex& scene, SurfacePoint& point);

}  // namespace tavora::studio
