#pragma once

#include <ImathVec.h>
#include <optional>

#include "studio/render/image/radiance.h"

namespace tavora::studio {

/// Samples of a pixel, summed in the order in which they come.
struct Accumulator {
    Imath::V3d color{0, 0, 0};  ///< scene-linear, premultiplied
    double alpha = 0;

    void add(const Radiance& radiance) {
        color += radiance.color;
        alpha += radiance.alpha;
    }

    /// Writes the average of `count` samples: scene-linear RGB, premultiplied,
    /// and alpha.
    void resolve(int count, float rgba[4]) const;
};

/// What lies behind the scene: one colour, or nothing. It goes under pixels that are
/// done, so that it has no part in where samples are taken: a picture over a
/// background and the transparent one laid over the same are one picture.
class Background {
  public:
    /// `color` is display-referred.
    explicit Background(const std::optional<Imath::V3d>& color);

    /// `rgba` is scene-linear, premultiplied; afterwards opaque, unless there is
    /// nothing behind.
    void compositeUnder(float rgba[4]) const;

  private:
    std::optional<Imath::V3d> light_;  ///< scene-linear
};

}  // namespace tavora::studio
