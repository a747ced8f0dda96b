#pragma once

#include <ImathVec.h>

#include "studio/render/options.h"

namespace tavora::studio {

/// Where in the picture to sample for a pixel so that the plain average of evenly
/// spread samples is the filtered one: `position`, 0..1 each way, spread as the filter
/// weighs, about the pixel at 0..1. Pixels need none of their neighbours' samples,
/// and a constant colour stays exact.
/// Source: Ernst, Stamminger, Greiner, "Filter Importance Sampling" (2006).
Imath::V2d spreadAsFilter(PixelFilter filter, const Imath::V2d& position);

}  // namespace tavora::studio
