#include "studio/util/color.h"

#include <algorithm>
#include <cmath>

#include "studio/util/deterministic_math.h"

namespace tavora::studio {
namespace {

/// x^2.4
double toThe12Fifths(double x) {
    return x * x * deterministic::fifthRoot(x * x);
}

/// x^(1/2.4), as the product of the fourth and the sixth root.
double toThe5Twelfths(double x) {
    return std::sqrt(std::sqrt(x)) * std::sqrt(deterministic::cubeRoot(x));
}

double decode(double v) {
    return v <= 0.04045 ? v / 12.92 : toThe12Fifths((v + 0.055) / 1.055);
}

double encode(double v) {
    if (v == 1) return 1;  // 1.055 - 0.055 would be a little less
    return v <= 0.0031308 ? v * 12.92 : 1.055 * toThe5Twelfths(v) - 0.055;
}

}  // namespace

double toLinear(double encoded) {
    return encoded < 0 ? -decode(-encoded) : decode(encoded);
}

double toEncoded(double linear) {
    return linear < 0 ? -encode(-linear) : encode(linear);
}

namespace {

/// So many numbers are converted at once.
constexpr std::size_t kBlock = 8;

/// Calls `convert(first, count)` for blocks of as many numbers.
template <class Convert>
void inBlocks(std::size_t count, const Convert& convert) {
    for (std::size_t first = 0; first < count; first += kBlock)
        convert(first, std::min(kBlock, count - first));
}

}  // namespace

void toLinear(std::span<const double> encoded, std::span<double> linear) {
    inBlocks(encoded.size(), [&](std::size_t first, std::size_t count) {
        double squares[kBlock] = {};
        double roots[kBlock] = {};
        for (std::size_t i = 0; i < count; ++i) {
            const double base = (std::abs(encoded[first + i]) + 0.055) / 1.055;
            squares[i] = base * base;
        }
        deterministic::fifthRoots(squares, count, roots);
        for (std::size_t i = 0; i < count; ++i) {
            const double v = encoded[first + i];
            const double size = std::abs(v);
            const double result = size <= 0.04045 ? size / 12.92 : squares[i] * roots[i];
            linear[first + i] = std::copysign(result, v);
        }
    });
}

}  // namespace tavora::studio
