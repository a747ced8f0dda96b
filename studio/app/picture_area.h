#pragma once

#include "studio/app/requests.h"

namespace tavora::studio {

/// The pixels that a render makes.
struct PictureArea {
    int width = 0;  ///< of the whole picture, scale counted in
    int height = 0;
    std::optional<PixelBox> crop;
    PixelBox undivided;  ///< what all tiles make together; else the same as `crop`
};

/// Throws Error, Fault::Usage for a picture too large, for a crop outside of it and for more
/// tiles than it has rows.
PictureArea pictureArea(const RenderRequest& request);

}  // namespace tavora::studio
