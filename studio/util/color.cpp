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

}  // namespace tavora::studio
