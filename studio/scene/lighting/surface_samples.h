#pragma once

#include <vector>

#include "studio/scene/scene.h"

namespace tavora::studio {

/// A point on a surface, which represents the area around it.
struct SurfaceSample {
    Imath::V3d position{0, 0, 0};  ///< world
    Imath::V3d normal{0, 0, 1};    ///< world, unit, on the triangle's front side
    double area = 0;               ///< square metres, times the opacity of a blended surface
    bool doubleSided = false;
};

/// Some thousands of points that represent all surfaces of the scene except unlit ones:
/// evenly spread over each mesh, more of them on larger meshes, a few on the smallest. The
/// same scene always gives the same points; a scene without triangles gives none. Visits
/// every triangle twice. Any thread.
std::vector<SurfaceSample> surfaceSamples(const Scene& scene);

}  // namespace tavora::studio
