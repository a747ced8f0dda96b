#include "studio/scene/color.h"

#include <cmath>

namespace tavora::studio {
namespace {

double decode(double v) {
    return v <= 0.04045 ? v / 12.92 : std::pow((v + 0.055) / 1.055, 2.4);
}

double encode(double v) {
    if (v == 1) return 1;  // where 1.055 - 0.055 is a little less
    return v <= 0.0031308 ? v * 12.92 : 1.055 * std::pow(v, 1.0 / 2.4) - 0.055;
}

}  // namespace

double toLinear(double encoded) {
    return encoded < 0 ? -decode(-encoded) : decode(encoded);
}

double toEncoded(double linear) {
    return linear < 0 ? -encode(-linear) : encode(linear);
}

}  // namespace tavora::studio
