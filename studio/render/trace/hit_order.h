#pragma once

#include <ImathVec.h>
#include <array>
#include <cstdint>
#include <limits>
#include <tuple>

namespace tavora::studio {

/// Order of hits along one ray: by distance, equal ones by number, so that what
/// is hit never depends on how the acceleration structure was built.
struct HitKey {
    float distance = -std::numeric_limits<float>::infinity();  ///< as hitDistance() gives it
    std::uint32_t mesh = 0;
    std::uint32_t triangle = 0;

    friend bool operator>(const HitKey& a, const HitKey& b) {
        return std::tie(a.distance, a.mesh, a.triangle) > std::tie(b.distance, b.mesh, b.triangle);
    }
    friend bool operator<=(const HitKey& a, const HitKey& b) { return !(a > b); }
};

/// How far along a ray the plane of a triangle lies, in single precision.
///
/// Embree divides by way of a reciprocal that the processor estimates, and each
/// maker's processors estimate in their own way: its distances differ between
/// machines in the last places, and of two hits so near each other now this one
/// comes first, now that. This is its quotient, by the same steps (those of its
/// robust kernels), divided as IEEE 754 has it: the same everywhere, and at most
/// kDistanceDoubt of a distance from what Embree says.
float hitDistance(const Imath::V3f& origin, const Imath::V3f& direction,
                  const std::array<Imath::V3f, 3>& corners);

/// Fraction of a distance by which two hits must lie apart for Embree to tell which
/// comes first: several times as much as its distances are off.
inline constexpr float kDistanceDoubt = 1.0F / (1 << 19);

/// A distance that is certain not to be less, or not to be more, than any that
/// Embree may give for `distance`.
inline float surelyBeyond(float distance) {
    return distance * (1 + kDistanceDoubt);
}
inline float surelyBefore(float distance) {
    return distance * (1 - kDistanceDoubt);
}

}  // namespace tavora::studio
