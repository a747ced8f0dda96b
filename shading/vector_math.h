#pragma once

#include <cmath>

namespace tavora {

/// Vectors are three doubles: x, y, z, or red, green, blue. No state. All here
/// is inline: a sample takes dozens of these, each shorter than a call.

/// Dot product, summed from x to z.
inline double ddot(const double a[3], const double b[3]) {
    return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}

/// out = a - b.
inline void dsub(const double a[3], const double b[3], double out[3]) {
    for (int i = 0; i < 3; ++i)
        out[i] = a[i] - b[i];
}

/// Square of the length.
inline double dlenSquared(const double v[3]) {
    return ddot(v, v);
}

/// Length.
inline double dlen(const double v[3]) {
    return std::sqrt(dlenSquared(v));
}

/// Divides `v` by its length, unless that is not greater than 0.
inline void normalize(double v[3]) {
    const double length = dlen(v);
    if (!(length > 0.0)) return;
    for (int i = 0; i < 3; ++i)
        v[i] /= length;
}

/// Distance of two points, rounded to single precision.
inline double ddist(const double a[3], const double b[3]) {
    double difference[3];
    dsub(a, b, difference);
    return static_cast<double>(static_cast<float>(dlen(difference)));
}

/// 0 below e0, else 1 from e1 on, else the cubic 3t^2 - 2t^3 in between.
/// Equal edges make a step and never divide by zero.
inline double smoothstep(double e0, double e1, double x) {
    if (e0 > x) return 0.0;
    if (x >= e1) return 1.0;
    const double t = (x - e0) / (e1 - e0);
    return t * t * (t * -2.0 + 3.0);
}

/// One channel `v` of the colour r, g, b, drawn towards the colour's grey mean:
/// s = 1 keeps it, s = 0 gives the mean. Products of two arguments, their sums
/// and the mean are formed in single precision, the blend in double.
inline double saturate(float v, float r, float g, float b, float s) {
    const float mean = (r + g + b) / 3.0f;
    return static_cast<double>(mean) * static_cast<double>(1.0f - s) + static_cast<double>(s * v);
}

}  // namespace tavora
