#pragma once

/// Between display-referred (sRGB-encoded) and scene-linear values.
/// Formula: IEC 61966-2-1, continued beyond 1 by the same power law; values
/// below 0 are mirrored.
namespace tavora::studio {

double toLinear(double encoded);
double toEncoded(double linear);

}  // namespace tavora::studio
