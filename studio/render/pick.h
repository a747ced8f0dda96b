#pragma once

#include <cstddef>

#include "studio/render/ray_scene.h"
#include "studio/scene/scene.h"

namespace tavora::studio {

/// Where in Scene::surfaces the first surface stands that is not wholly clear in
/// the centre of a pixel; -1 for none, and outside the picture. x to the right,
/// y down. Any thread.
std::ptrdiff_t pickSurface(const RayScene& scene, const Camera& camera, int width, int height,
                           int x, int y);

}  // namespace tavora::studio
