#pragma once

#include <ImathVec.h>
#include <vector>

namespace tavora::studio {

/// Positions of `count` samples within a pixel, 0..1 each way: its centre for one,
/// else no two in the same row or column of a count x count grid and spread
/// evenly. The same for every pixel and every frame, so that a still surface
/// does not flicker.
std::vector<Imath::V2d> hammersleyPattern(int count);

/// Positions of `count` samples of which the first 4, 16, 64 and so on are spread
/// evenly by themselves: the (0,2)-sequence of Sobol's first two dimensions,
/// shifted so that each beginning lies about the pixel's centre. The same for
/// every pixel and every frame.
std::vector<Imath::V2d> sequence02(int count);

}  // namespace tavora::studio
