#include "studio/scene/animation/curve.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "studio/util/deterministic_math.h"

namespace tavora::studio {
namespace {

/// Above this cosine, quaternions are interpolated linearly: the angle between them is too
/// small to divide by its sine.
constexpr double kNearlySame = 0.9995;

void normalize(std::span<double> quaternion) {
    double length2 = 0;
    for (const double value : quaternion)
        length2 += value * value;
    if (!(length2 > 0)) {
        std::fill(quaternion.begin(), quaternion.end(), 0.0);
        quaternion.back() = 1;
        return;
    }
    for (double& value : quaternion)
        value /= std::sqrt(length2);
}

double dot(const float* a, const float* b) {
    double sum = 0;
    for (int i = 0; i < 4; ++i)
        sum += static_cast<double>(a[i]) * static_cast<double>(b[i]);
    return sum;
}

/// The weights of two quaternions, `fraction` of the way along the arc between them.
std::array<double, 2> slerpWeights(double cosine, double fraction) {
    const double sign = cosine < 0 ? -1 : 1;
    if (std::abs(cosine) > kNearlySame) return {1 - fraction, fraction * sign};
    const double angle = deterministic::arcCosine(std::abs(cosine));
    const double sine = deterministic::sin(angle);
    return {deterministic::sin((1 - fraction) * angle) / sine,
            deterministic::sin(fraction * angle) / sine * sign};
}

}  // namespace

void Curve::sample(double seconds, std::span<double> out) const {
    const auto time = static_cast<float>(seconds);
    const auto after = static_cast<std::size_t>(std::upper_bound(times.begin(), times.end(), time) -
                                                times.begin());
    const bool isCubic = interpolation == Interpolation::CubicSpline;
    const std::size_t stride = isCubic ? 3 * width : width;
    const auto at = [&](std::size_t key) { return &values[key * stride + (isCubic ? width : 0)]; };
    const std::size_t last = times.size() - 1;
    const std::size_t from = std::min(after > 0 ? after - 1 : 0, last);
    if (after == 0 || from == last || interpolation == Interpolation::Step) {
        std::copy_n(at(from), width, out.begin());
    } else {
        const double start = static_cast<double>(times[from]);
        const double gap = static_cast<double>(times[from + 1]) - start;
        const double fraction = std::clamp((seconds - start) / gap, 0.0, 1.0);
        std::array<double, 2> weights{1 - fraction, fraction};
        std::array<double, 2> tangentWeights{0, 0};
        if (isCubic) {
            const double square = fraction * fraction;
            const double cube = square * fraction;
            weights = {2 * cube - 3 * square + 1, 3 * square - 2 * cube};
            tangentWeights = {gap * (cube - 2 * square + fraction), gap * (cube - square)};
        } else if (isRotation) {
            weights = slerpWeights(dot(at(from), at(from + 1)), fraction);
        }
        for (std::size_t i = 0; i < width; ++i) {
            out[i] = weights[0] * static_cast<double>(at(from)[i]) +
                     weights[1] * static_cast<double>(at(from + 1)[i]);
            if (!isCubic) continue;
            const double leaving = static_cast<double>(values[from * stride + 2 * width + i]);
            const double arriving = static_cast<double>(values[(from + 1) * stride + i]);
            out[i] += tangentWeights[0] * leaving + tangentWeights[1] * arriving;
        }
    }
    if (isRotation) normalize(out.first(width));
}

}  // namespace tavora::studio
