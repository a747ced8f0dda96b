#pragma once

#include <ImathVec.h>
#include <cstddef>
#include <optional>

#include "studio/render/trace/ray_scene.h"
#include "studio/scene/scene.h"

namespace tavora::studio {

/// What a pixel shows.
struct Picked {
    std::size_t surface = 0;       ///< in Scene::surfaces
    Imath::V3d position{0, 0, 0};  ///< world
};

/// The first surface that is not wholly clear in the centre of a pixel; none
/// outside the picture. x to the right, y down. Any thread.
std::optional<Picked> pick(const RayScene& scene, const Camera& camera, int width, int height,
                           int x, int y);

}  // namespace tavora::studio
