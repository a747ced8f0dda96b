#include "studio/render/scattering.h"

#include <algorithm>
#include <cmath>

#include "studio/util/deterministic_math.h"

namespace tavora::studio {
namespace {

double glossy(const LightArrival& arrival, const Imath::V3d& normal, const Imath::V3d& toViewer,
              unsigned exponent) {
    const Imath::V3d half = (toViewer - arrival.direction).normalized();
    return deterministic::power(std::max(half.dot(normal), 0.0), exponent);
}

}  // namespace

Imath::V3d shownInLight(const SampleValues& values, unsigned exponent, const SurfacePoint& point,
                        const Imath::V3d& toViewer, const LightSet& rig, LightArrivals& lights) {
    Imath::V3d scattered = rig.ambient;
    Imath::V3d reflected(0);
    for (std::size_t i = 0; i < rig.lights.size(); ++i) {
        const double cosine = lights.cosine(i);
        if (!(cosine > 0)) continue;
        const LightArrival& arrival = lights.at(i);
        if (!arrival.lit) continue;
        scattered += arrival.color * cosine;
        if (values.specular != 0 && rig.lights[i].light->makesHighlights) {
            reflected += arrival.color * glossy(arrival, point.normal, toViewer, exponent);
        }
    }
    const Imath::V3d light = Imath::V3d(values.luminosity) + scattered * values.diffuse;
    return values.color * light + reflected * values.specular;
}

}  // namespace tavora::studio
