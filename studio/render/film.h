#pragma once

#include <ImathVec.h>

#include "studio/render/sight.h"

namespace tavora::studio {

/// Samples of a pixel, summed in linear light, in the order in which they come.
struct PixelSum {
    Imath::V3d color{0, 0, 0};  ///< scene-linear, premultiplied
    double alpha = 0;

    /// Writes the average of `count` samples: scene-linear RGB, premultiplied,
    /// and alpha.
    void develop(int count, float rgba[4]) const;
};

/// Adds samples to sums. One thread at a time.
class LightMeter {
  public:
    void add(const Sight& sight, PixelSum& sum);

  private:
    struct Metered {
        Sight sight;
        Imath::V3d color{0, 0, 0};  ///< as in PixelSum
    };
    // Neighbouring samples often see the same, or by turns the two sides of a border.
    Metered last_;
    Metered before_;
};

}  // namespace tavora::studio
