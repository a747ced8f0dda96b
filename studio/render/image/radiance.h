#pragma once

#include <ImathVec.h>

#include "studio/render/image/pixel8.h"

namespace tavora::studio {

/// What a camera ray shows of the scene, whatever lies behind the scene. It is light: it may
/// be added and averaged.
struct Radiance {
    Imath::V3d color{0, 0, 0};  ///< scene-linear, premultiplied by `alpha`
    double alpha = 0;           ///< 0..1
    /// As a display would show it: premultiplied colour and alpha, both encoded. They tell how
    /// far two of these look apart at most, whatever they are laid over.
    Pixel8 encoded{};

    bool operator==(const Radiance&) const = default;
};

}  // namespace tavora::studio
