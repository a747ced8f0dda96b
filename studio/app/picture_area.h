#pragma once

#include "studio/app/requests.h"

namespace tavora::studio {

/// The size of a picture, and the part of it that is rendered.
struct PictureArea {
    int width = 0;  ///< of the whole picture, after scaling
    int height = 0;
    std::optional<PixelBox> crop;  ///< the part that is rendered; empty: all of it
    PixelBox undivided;            ///< the part that all tiles make together, or `crop`
};

/// Computes the area for a request. Throws Error, Fault::Usage, for a picture that is too large,
/// a crop outside of it, and more tiles than rows.
PictureArea pictureArea(const RenderRequest& request);

}  // namespace tavora::studio
