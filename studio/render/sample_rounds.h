#pragma once

#include <ImathVec.h>
#include <cstddef>
#include <vector>

#include "studio/render/renderer.h"

namespace tavora::studio {

inline bool isAdaptive(const RenderOptions& options) {
    return options.mostSamples > options.samples && !options.part;
}

/// The samples of adaptive pixels, round after round. All pixels get those of the first
/// two, of which the first traces the shadows about, so that the others need trace but
/// few. Each of the rest brings up to four times as many.
std::vector<SampleRun> roundsOf(const RenderOptions& options);

/// Places of a pixel's samples, 0..1 each way, in turn for pixels side by side. Those of
/// adaptive pixels begin with each of the least ones in turn: along a row of pixels, or
/// a column, those that trace the shadows do not all lie on a line, which a thin shadow
/// could pass by.
std::vector<std::vector<Imath::V2d>> patternsOf(const RenderOptions& options);

}  // namespace tavora::studio
