#include "studio/scene/lighting/light_strength.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "studio/scene/lighting/light_sample.h"

namespace tavora::studio {
namespace {

using Imath::V3d;

constexpr double kLitFlux = 0.9;       // fraction of a light's flux that lands on what it lights
constexpr double kExceededArea = 0.1;  // fraction of the lit area that is brighter than the result

/// The light on one surface sample.
struct LitSample {
    double illuminance = 0;  ///< lux, on a surface that faces the light
    double cone = 1;         ///< coneAttenuation()
    double area = 0;         ///< square metres, as in SurfaceSample
    double flux = 0;         ///< that the area receives, lumen
};

/// All 0 where the surface faces away from the light, or its cone or range leaves it dark.
LitSample lightOn(const Light& light, double candela, const SurfaceSample& point) {
    const V3d offset = point.position - light.position;
    const double distance2 = offset.length2();
    if (!(distance2 > 0) || !std::isfinite(distance2)) return {};
    const double distance = std::sqrt(distance2);
    double cosine = -offset.dot(point.normal) / distance;
    if (point.doubleSided) cosine = std::abs(cosine);
    if (!(cosine > 0)) return {};
    LitSample sample;
    if (light.kind == LightKind::Spot)
        sample.cone = coneAttenuation(light.innerCosine, light.outerCosine,
                                      offset.dot(light.direction) / distance);
    sample.illuminance =
        candela * sample.cone * rangeAttenuation(light.range, distance) / distance2;
    sample.area = point.area;
    sample.flux = sample.illuminance * cosine * point.area;
    return sample;
}

/// The value that is exceeded on a fraction kExceededArea of the samples' area.
template <typename Value>
double exceeded(std::vector<LitSample>& samples, Value LitSample::*value) {
    std::sort(samples.begin(), samples.end(),
              [value](const LitSample& a, const LitSample& b) { return a.*value > b.*value; });
    double totalArea = 0;
    for (const LitSample& sample : samples)
        totalArea += sample.area;
    double area = 0;
    for (const LitSample& sample : samples) {
        area += sample.area;
        if (area >= kExceededArea * totalArea) return sample.*value;
    }
    return 0;
}

/// Keeps the brightest samples, which together receive a fraction kLitFlux of the flux.
void keepBrightest(std::vector<LitSample>& samples) {
    std::sort(samples.begin(), samples.end(),
              [](const LitSample& a, const LitSample& b) { return a.illuminance > b.illuminance; });
    double totalFlux = 0;
    for (const LitSample& sample : samples)
        totalFlux += sample.flux;
    double flux = 0;
    std::size_t count = 0;
    while (count < samples.size() && flux < kLitFlux * totalFlux)
        flux += samples[count++].flux;
    samples.resize(count);
}

}  // namespace

double peakIntensity(const Light& light) {
    const double peak = std::max({light.color.x, light.color.y, light.color.z, 0.0F});
    return std::max(0.0, static_cast<double>(light.intensity)) * peak;
}

PunctualStrength punctualStrength(const Light& light, std::span<const SurfaceSample> points) {
    const double candela = peakIntensity(light);
    std::vector<LitSample> samples;
    for (const SurfaceSample& point : points) {
        const LitSample sample = lightOn(light, candela, point);
        if (sample.flux > 0) samples.push_back(sample);
    }
    keepBrightest(samples);
    if (samples.empty()) return {};
    return {exceeded(samples, &LitSample::illuminance), exceeded(samples, &LitSample::cone)};
}

}  // namespace tavora::studio
