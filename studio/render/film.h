#pragma once

#include <ImathVec.h>
#include <optional>

#include "studio/render/sight.h"

namespace tavora::studio {

/// Samples of a pixel, summed in the order in which they come.
struct PixelSum {
    Imath::V3d color{0, 0, 0};  ///< scene-linear, premultiplied
    double alpha = 0;

    void add(const Sight& sight) {
        color += sight.color;
        alpha += sight.alpha;
    }

    /// Writes the average of `count` samples: scene-linear RGB, premultiplied,
    /// and alpha.
    void develop(int count, float rgba[4]) const;
};

/// What lies behind the scene: one colour, or nothing. It goes under pixels that are
/// done, so that it has no part in where samples are taken: a picture over a
/// background and the transparent one laid over the same are one picture.
class Backdrop {
  public:
    /// `color` is display-referred.
    explicit Backdrop(const std::optional<Imath::V3d>& color);

    /// `rgba` is scene-linear, premultiplied; afterwards opaque, unless there is
    /// nothing behind.
    void layUnder(float rgba[4]) const;

  private:
    std::optional<Imath::V3d> light_;  ///< scene-linear
};

}  // namespace tavora::studio
