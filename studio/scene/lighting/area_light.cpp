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

/// Point `i` of the R3 sequence, which fills the cube -1..1 ever more evenly: multiples
/// of the powers of 1 / g, where g^4 = g + 1. Roberts, "The Unreasonable Effectiveness
/// of Quasirandom Sequences" (2018).
V3d cubePoint(std::size_t i) {
    const auto n = static_cast<double>(i + 1);
    return {centred(n * 0.8191725133961645), centred(n * 0.6710436067037893),
            centred(n * 0.5497004779019703)};
}

/// Point `i` of the R2 sequence, which fills the square -1..1 in the same way, with
/// g^3 = g + 1.
V2d squarePoint(std::size_t i) {
    const auto n = static_cast<double>(i + 1);
    return {centred(n * 0.7548776662466927), centred(n * 0.5698402909980532)};
}

/// The first kAreaPoints points of a sequence inside the unit ball or disc, each followed
/// by its mirror image through the centre, so that the mean of all points is the centre.
template <class Point>
std::vector<Point> symmetricPoints(Point (*sequence)(std::size_t)) {
    std::vector<Point> pairs;
    for (std::size_t i = 0; pairs.size() < kAreaPoints; ++i) {
        const Point inside = sequence(i);
        if (inside.length2() > 1) continue;
        pairs.push_back(inside);
        pairs.push_back(-inside);
    }
    return pairs;
}

/// The coordinate axis along which `v` is shortest, which is never parallel to it.
V3d leastAxis(const V3d& v) {
    const V3d size(std::abs(v.x), std::abs(v.y), std::abs(v.z));
    if (size.x <= size.y && size.x <= size.z) return {1, 0, 0};
    return size.y <= size.z ? V3d(0, 1, 0) : V3d(0, 0, 1);
}

}  // namespace

std::vector<V3d> punctualLightPoints(const Light& light, double radius) {
    std::vector<V3d> points;
    if (!(radius > 0)) return points;
    for (const V3d& inside : symmetricPoints(cubePoint))
        points.push_back(light.position + inside * radius);
    return points;
}

std::vector<V3d> directionalLightPoints(const Light& light, double angle) {
    std::vector<V3d> directions;
    if (!(angle > 0)) return directions;
    const V3d across = light.direction.cross(leastAxis(light.direction)).normalized();
    const V3d along = light.direction.cross(across);
    const double radius = deterministic::tan(angle / 2);
    for (const V2d& inside : symmetricPoints(squarePoint)) {
        const V3d offset = (across * inside.x + along * inside.y) * radius;
        directions.push_back((offset - light.direction).normalized());
    }
    return directions;
}

}  // namespace tavora::studio
