#pragma once

#include <ImathVec.h>

#include "studio/render/sight.h"

namespace tavora::studio {

/// Gathers the samples of a pixel: averages them in linear light.
class PixelFilm {
  public:
    void add(const Sight& sight);

    /// Writes the average of the samples since the last call: scene-linear RGB,
    /// premultiplied, and alpha.
    void develop(float rgba[4]);

  private:
    Imath::V3d color_{0, 0, 0};
    double alpha_ = 0;
    int count_ = 0;
    Sight last_;  ///< neighbouring samples often see the same
    Imath::V3d lastLinear_{0, 0, 0};
};

}  // namespace tavora::studio
