#include "shading/vector_math.h"

#include <cmath>

namespace tavora {

void normalize(double v[3]) {
    const double length = dlen(v);
    if (!(length > 0.0)) return;
    for (int i = 0; i < 3; ++i)
        v[i] /= length;
}

double ddot(const double a[3], const double b[3]) {
    return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}

void dsub(const double a[3], const double b[3], double out[3]) {
    for (int i = 0; i < 3; ++i)
        out[i] = a[i] - b[i];
}

double dlenSquared(const double v[3]) {
    return ddot(v, v);
}

double dlen(const double v[3]) {
    return std::sqrt(dlenSquared(v));
}

double ddist(const double a[3], const double b[3]) {
    double difference[3];
    dsub(a, b, difference);
    return static_cast<double>(static_cast<float>(dlen(difference)));
}

double smoothstep(double e0, double e1, double x) {
    if (e0 > x) return 0.0;
    if (x >= e1) return 1.0;
    const double t = (x - e0) / (e1 - e0);
    return t * t * (t * -2.0 + 3.0);
}

double saturate(float v, float r, float g, float b, float s) {
    const float mean = (r + g + b) / 3.0f;
    return static_cast<double>(mean) * static_cast<double>(1.0f - s) + static_cast<double>(s * v);
}

}  // namespace tavora
