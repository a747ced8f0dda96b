#pragma once

#include <ImathVec.h>
#include <vector>

namespace tavora::studio {

/// Places of `count` samples within a pixel, 0..1 each way: its centre for one,
/// else no two in the same row or column of a count x count grid and spread
/// evenly. The same for every pixel and every frame, so that a still surface
/// does not flicker.
std::vector<Imath::V2d> samplePattern(int count);

}  // namespace tavora::studio
