#pragma once

/// Conversions between display-referred (sRGB-encoded) and scene-linear values. Formula:
/// IEC 61966-2-1, extended above 1 by the same power law and below 0 by symmetry. The same
/// results on every processor. Any thread.
namespace tavora::studio {

double toLinear(double encoded);
double toEncoded(double linear);

}  // namespace tavora::studio
