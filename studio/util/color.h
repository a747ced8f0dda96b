#pragma once

#include <span>

/// Between display-referred (sRGB-encoded) and scene-linear values.
/// Formula: IEC 61966-2-1, continued beyond 1 by the same power law; values
/// below 0 are mirrored.
namespace tavora::studio {

double toLinear(double encoded);
double toEncoded(double linear);

/// toLinear() of each number, into as many of `linear`.
void toLinear(std::span<const double> encoded, std::span<double> linear);

}  // namespace tavora::studio
