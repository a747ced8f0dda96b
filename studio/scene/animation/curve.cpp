#include "studio/scene/animation/curve.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "studio/util/deterministic_math.h"

namespace tavora::studio {
namespace {

/// Quaternions nearer than this are blended in a straight line: the angle
/// between them says nothing any more.
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

/// Shares of two quaternions on the arc between them.
std::array<double, 2> arcShares(double cosine, double share) {
    const double sign = cosine < 0 ? -1 : 1;
    if (std::abs(cosine) > kNearlySame) return {1 - share, share * sign};
    const double angle = deterministic::arcCosine(std::abs(cosine));
    const double sine = deterministic::sin(angle);
    return {deterministic::sin((1 - share) * angle) / sine,
            deterministic::sin(share * angle) / sine * sign};
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
        const double share = std::clamp((seconds - start) / gap, 0.0, 1.0);
        std::array<double, 2> of{1 - share, share};
        std::array<double, 2> ofTangents{0, 0};
        if (isCubic) {
            const double square = share * share;
            const double cube = square * share;
            of = {2 * cube - 3 * square + 1, 3 * square - 2 * cube};
            ofTangents = {gap * (cube - 2 * square + share), gap * (cube - square)};
        } else if (isRotation) {
            of = arcShares(dot(at(from), at(from + 1)), share);
        }
        for (std::size_t i = 0; i < width; ++i) {
            out[i] = of[0] * static_cast<double>(at(from)[i]) +
                     of[1] * static_cast<double>(at(from + 1)[i]);
            if (!isCubic) continue;
            const double leaving = static_cast<double>(values[from * stride + 2 * width + i]);
            const double arriving = static_cast<double>(values[(from + 1) * stride + i]);
            out[i] += ofTangents[0] * leaving + ofTangents[1] * arriving;
        }
    }
    if (isRotation) normalize(out.first(width));
}

}  // namespace tavora::studio
