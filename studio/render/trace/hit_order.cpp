#include "studio/render/trace/hit_order.h"

#include <cmath>

namespace tavora::studio {
namespace {

using Imath::V3f;

/// Of sums in this order, as everything here.
float dot(const V3f& a, const V3f& b) {
    return a.x * b.x + (a.y * b.y + a.z * b.z);
}

/// One component of the normal: of the two products of edges the one in which
/// less cancels.
float steadier(float ab, float abTaken, float bc, float bcTaken) {
    return std::abs(abTaken) < std::abs(bcTaken) ? ab - abTaken : bc - bcTaken;
}

/// From the three edges of a triangle, of any length.
V3f normalOf(const V3f& a, const V3f& b, const V3f& c) {
    return {steadier(a.y * b.z, a.z * b.y, b.y * c.z, b.z * c.y),
            steadier(a.z * b.x, a.x * b.z, b.z * c.x, b.x * c.z),
            steadier(a.x * b.y, a.y * b.x, b.x * c.y, b.y * c.x)};
}

}  // namespace

float hitDistance(const V3f& origin, const V3f& direction, const std::array<V3f, 3>& corners) {
    const V3f v0 = corners[0] - origin;
    const V3f v1 = corners[1] - origin;
    const V3f v2 = corners[2] - origin;
    const V3f normal = normalOf(v2 - v0, v0 - v1, v1 - v2);
    return (2 * dot(v0, normal)) / (2 * dot(normal, direction));
}

}  // namespace tavora::studio
