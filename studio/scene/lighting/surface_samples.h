#pragma once

#include <vector>

#include "studio/scene/scene.h"

namespace tavora::studio {

/// A place on a surface that light can change; it stands for the area around it.
struct SurfaceSample {
    Imath::V3d position{0, 0, 0};  ///< world
    Imath::V3d normal{0, 0, 1};    ///< world, unit, away from the triangle's front
    double area = 0;               ///< square metres, times the opacity of a blended surface
    bool doubleSided = false;
};

/// Some thousands of points that stand for all surfaces of the scene but unlit
/// ones: evenly spread over each mesh, more of them on larger meshes, a few on
/// the smallest. The same for the same scene; none without triangles. Visits every
/// triangle twice. Any thread.
std::vector<SurfaceSample> surfaceSamples(const Scene& scene);

}  // namespace tavora::studio
