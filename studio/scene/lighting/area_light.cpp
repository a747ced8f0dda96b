#include "studio/scene/lighting/area_light.h"

#include <cmath>

#include "studio/util/deterministic_math.h"

namespace tavora::studio {
namespace {

using Imath::V2d;
using Imath::V3d;

double centred(double x) {
    return 2 * (x - std::floor(x)) - 1;
}

/// Place `i` of a sequence that fills the cube -1..1 ever more evenly: multiples
/// of the powers of 1 / g, g^4 = g + 1. Roberts, "The Unreasonable Effectiveness
/// of Quasirandom Sequences" (2018).
V3d inCube(std::size_t i) {
    const auto n = static_cast<double>(i + 1);
    return {centred(n * 0.8191725133961645), centred(n * 0.6710436067037893),
            centred(n * 0.5497004779019703)};
}

/// The same for the square: g^3 = g + 1.
V2d inSquare(std::size_t i) {
    const auto n = static_cast<double>(i + 1);
    return {centred(n * 0.7548776662466927), centred(n * 0.5698402909980532)};
}

/// The first places within 1 of the middle, each with its opposite, so that the
/// middle of all is the light's own.
template <class Place>
std::vector<Place> pairsInside(Place (*place)(std::size_t)) {
    std::vector<Place> pairs;
    for (std::size_t i = 0; pairs.size() < kAreaPoints; ++i) {
        const Place inside = place(i);
        if (inside.length2() > 1) continue;
        pairs.push_back(inside);
        pairs.push_back(-inside);
    }
    return pairs;
}

V3d leastAxis(const V3d& v) {
    const V3d size(std::abs(v.x), std::abs(v.y), std::abs(v.z));
    if (size.x <= size.y && size.x <= size.z) return {1, 0, 0};
    return size.y <= size.z ? V3d(0, 1, 0) : V3d(0, 0, 1);
}

}  // namespace

std::vector<V3d> punctualLightPoints(const Light& light, double radius) {
    std::vector<V3d> points;
    if (!(radius > 0)) return points;
    for (const V3d& inside : pairsInside(inCube))
        points.push_back(light.position + inside * radius);
    return points;
}

std::vector<V3d> directionalLightPoints(const Light& light, double angle) {
    std::vector<V3d> ways;
    if (!(angle > 0)) return ways;
    const V3d across = light.direction.cross(leastAxis(light.direction)).normalized();
    const V3d along = light.direction.cross(across);
    const double radius = deterministic::tan(angle / 2);
    for (const V2d& inside : pairsInside(inSquare)) {
        const V3d aside = (across * inside.x + along * inside.y) * radius;
        ways.push_back((aside - light.direction).normalized());
    }
    return ways;
}

}  // namespace tavora::studio
