#pragma once

#include <ImathVec.h>

namespace tavora::studio {

/// How a pixel weighs what shows around its centre.
enum class PixelFilter {
    Box,            ///< the pixel itself, evenly: the crispest
    Tent,           ///< falls to nothing at the neighbours' centres
    BlackmanHarris  ///< a bell 3 pixels wide: the softest
};

/// Where in the picture to sample for a pixel so that the plain average of evenly
/// spread samples is the filtered one: `place`, 0..1 each way, spread as the filter
/// weighs, about the pixel at 0..1. Pixels need none of their neighbours' samples,
/// and a constant colour stays exact.
/// Source: Ernst, Stamminger, Greiner, "Filter Importance Sampling" (2006).
Imath::V2d spreadAsFilter(PixelFilter filter, const Imath::V2d& place);

}  // namespace tavora::studio
