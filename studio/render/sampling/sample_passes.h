#pragma once

#include <ImathVec.h>
#include <cstddef>
#include <vector>

#include "studio/render/options.h"

namespace tavora::studio {

inline bool isAdaptive(const RenderOptions& options) {
    return options.maxSamples > options.samples && !options.part;
}

/// The samples of adaptive pixels, pass after pass. All pixels get those of the first two, of
/// which the first traces all shadow rays, so that the others need but few. Each of the rest
/// brings up to four times as many as there were.
std::vector<SampleRange> adaptivePasses(const RenderOptions& options);

/// Positions of a pixel's samples, 0..1 each way, in turn for pixels side by side. Those of
/// adaptive pixels begin with each of the least ones in turn: along a row of pixels, or
/// a column, those that trace the shadows do not all lie on a line, which a thin shadow
/// could pass by.
std::vector<std::vector<Imath::V2d>> patternsOf(const RenderOptions& options);

}  // namespace tavora::studio
