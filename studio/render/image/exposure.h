#pragma once

#include <ImathVec.h>
#include <optional>
#include <vector>

#include "studio/render/image/picture.h"

namespace tavora::studio {

/// When, while a shutter is open, each of a pixel's samples is taken: fractions of that time,
/// 0..1, evenly spread over time and, by the order of the samples, over the pixel. The
/// same for every pixel and every frame, so that what stands still does not flicker.
/// Formula: the van der Corput sequence of base 3, by rank; the places of samples are of
/// base 2.
std::vector<double> shutterTimes(int samples);

/// A picture of several, each of the same pixels at another time. One thread.
class Exposure {
  public:
    /// Of pictures without a background.
    void add(const Picture& picture);

    /// Their mean, over a background that is display-referred; empty: transparent.
    Picture resolve(const std::optional<Imath::V3d>& background) const;

  private:
    Picture first_;
    std::vector<double> sums_;
    int count_ = 0;
};

}  // namespace tavora::studio
