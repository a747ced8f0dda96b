#pragma once

#include "host/sample.h"
#include "studio/render/surface/surface_point.h"
#include "studio/render/trace/ray_scene.h"

namespace tavora::studio {

/// From where a camera ray or traced ray comes, as modules see it.
struct Viewpoint {
    Imath::V3d position{0, 0, 0};
    Imath::V3d direction{0, 0, -1};  ///< unit, of the ray
    double distance = 0;             ///< from there to the sample
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

/// Fills those that say where it is and how it is seen.
void fillPoint(const SurfacePoint& point, const Viewpoint& from, HostSample& record);

/// Fills what a shader may change.
inline void fillValues(const SampleValues& values, HostSample& record) {
    record.color[0] = values.color.x;
    record.color[1] = values.color.y;
    record.color[2] = values.color.z;
    record.luminosity = values.luminosity;
    record.diffuse = values.diffuse;
    record.specular = values.specular;
    record.transparency = values.transparency;
}

/// Takes from a shader's work in `record` what its `flags` name into `values`, and
/// no value that is not a number or infinite.
void takeBack(unsigned flags, const HostSample& record, SampleValues& values);

}  // namespace tavora::studio
