#include "studio/scene/lighting/light_strength.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "studio/scene/lighting/light_sample.h"

namespace tavora::studio {
namespace {

using Imath::V3d;

constexpr double kCaught = 0.9;    // of the light: lands on what counts as reached
constexpr double kExceeded = 0.1;  // of the reached area: is lit more than the strength says

/// A place that a lamp lights.
struct LitPlace {
    double illuminance = 0;  ///< square to the light
    double cone = 1;
    double area = 0;
    double flux = 0;  ///< what the area catches
};

/// Dark where the place turns away or cone or range end before it.
LitPlace lightAt(const Light& lamp, double candela, const SurfaceSample& point) {
    const V3d way = point.position - lamp.position;
    const double distance2 = way.length2();
    if (!(distance2 > 0) || !std::isfinite(distance2)) return {};
    const double distance = std::sqrt(distance2);
    double facing = -way.dot(point.normal) / distance;
    if (point.doubleSided) facing = std::abs(facing);
    if (!(facing > 0)) return {};
    LitPlace place;
    if (lamp.kind == LightKind::Spot)
        place.cone = coneAttenuation(lamp.innerCosine, lamp.outerCosine, way.dot(lamp.direction) / distance);
    place.illuminance = candela * place.cone * rangeAttenuation(lamp.range, distance) / distance2;
    place.area = point.area;
    place.flux = place.illuminance * facing * point.area;
    return place;
}

/// The value that is exceeded on kExceeded of the area.
template <typename Value>
double exceeded(std::vector<LitPlace>& places, Value LitPlace::*value) {
    std::sort(places.begin(), places.end(),
              [value](const LitPlace& a, const LitPlace& b) { return a.*value > b.*value; });
    double area = 0;
    for (const LitPlace& place : places)
        area += place.area;
    double passed = 0;
    for (const LitPlace& place : places) {
        passed += place.area;
        if (passed >= kExceeded * area) return place.*value;
    }
    return 0;
}

/// Leaves the places that are lit most and together catch kCaught of the light.
void keepReached(std::vector<LitPlace>& places) {
    std::sort(places.begin(), places.end(),
              [](const LitPlace& a, const LitPlace& b) { return a.illuminance > b.illuminance; });
    double caught = 0;
    for (const LitPlace& place : places)
        caught += place.flux;
    double passed = 0;
    std::size_t count = 0;
    while (count < places.size() && passed < kCaught * caught)
        passed += places[count++].flux;
    places.resize(count);
}

}  // namespace

double peakIntensity(const Light& light) {
    const double peak = std::max({light.color.x, light.color.y, light.color.z, 0.0F});
    return std::max(0.0, static_cast<double>(light.intensity)) * peak;
}

LampReach lampReach(const Light& lamp, std::span<const SurfaceSample> points) {
    const double candela = peakIntensity(lamp);
    std::vector<LitPlace> places;
    for (const SurfaceSample& point : points) {
        const LitPlace place = lightAt(lamp, candela, point);
        if (place.flux > 0) places.push_back(place);
    }
    keepReached(places);
    if (places.empty()) return {};
    return {exceeded(places, &LitPlace::illuminance), exceeded(places, &LitPlace::cone)};
}

}  // namespace tavora::studio
