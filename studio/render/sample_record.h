#pragma once

#include "host/sample.h"
#include "studio/render/ray_scene.h"
#include "studio/render/surface_point.h"

namespace tavora::studio {

/// Where a viewing or traced ray starts, as modules see it.
struct Viewpoint {
    Imath::V3d position{0, 0, 0};
    Imath::V3d direction{0, 0, -1};  ///< unit, of the ray
};

/// What a shader may change in a record.
struct SampleValues {
    Imath::V3d color{0, 0, 0};
    double luminosity = 0;
    double diffuse = 0;
    double specular = 0;
    double transparency = 0;  ///< 0..1
};

/// Fills the fields of `record` that all samples on a facet share.
void fillFacet(const RayScene& scene, const Facet& facet, HostSample& record);

/// Fills all others but the callbacks.
void fillPoint(const SurfacePoint& point, const Viewpoint& from, const SampleValues& values,
               HostSample& record);

/// What remains of a shader's work in `record`: only what its `flags` name, the
/// rest as `before`; and no value that is not a number or infinite. The record
/// then holds the same.
SampleValues takeBack(const SampleValues& before, unsigned flags, HostSample& record);

}  // namespace tavora::studio
