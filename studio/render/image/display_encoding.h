#pragma once

namespace tavora::studio {

/// A scene-linear value as a display of 8 bits takes it: sRGB-encoded, 0..255.
unsigned encodeByte(double linear);

/// A pixel as files and displays take it: sRGB-encoded, in whole steps
/// 0..`top`. `rgba` is scene-linear, premultiplied. With `alpha` the colour is
/// not premultiplied, and black where nothing covers; without, it stays as it
/// is and levels[3] is untouched. What is no number counts as 0.
void encodeForDisplay(const float rgba[4], bool alpha, unsigned top, unsigned levels[4]);

}  // namespace tavora::studio
