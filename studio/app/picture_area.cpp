#include "studio/app/picture_area.h"

#include <algorithm>
#include <cmath>
#include <fmt/format.h>

#include "studio/render/image/picture_tiles.h"
#include "studio/util/error.h"

namespace tavora::studio {
namespace {

constexpr double kMaxPixels = 400e6;  // 6.4 GB while it renders

int scaled(int side, double scale) {
    return std::max(1, static_cast<int>(std::lround(side * scale)));
}

int edge(double fraction, int side) {
    return static_cast<int>(std::lround(fraction * side));
}

// Adjacent crops give adjacent boxes, because a common edge is rounded in the same way.
PixelBox boxOf(const CropFractions& fractions, const PictureArea& area) {
    PixelBox box{edge(fractions[0], area.width), edge(fractions[1], area.height),
                 edge(fractions[2], area.width), edge(fractions[3], area.height)};
    if (box.width() > 0 && box.height() > 0) return box;
    throw Error(Fault::Usage,
                fmt::format("--crop leaves no pixel of {}x{}; take more of the picture", area.width,
                            area.height));
}

}  // namespace

PictureArea pictureArea(const RenderRequest& request) {
    PictureArea area{
        scaled(request.width, request.scale), scaled(request.height, request.scale), {}, {}};
    if (request.cropFractions) area.crop = boxOf(*request.cropFractions, area);
    if (request.cropPixels) area.crop = request.cropPixels;
    if (area.crop && (area.crop->right > area.width || area.crop->bottom > area.height)) {
        throw Error(Fault::Usage, fmt::format("--crop-pixels reaches beyond the picture of {}x{}",
                                              area.width, area.height));
    }
    area.undivided = area.crop.value_or(PixelBox{0, 0, area.width, area.height});
    if (request.tile) {
        if (request.tile->count > area.undivided.height()) {
            throw Error(Fault::Usage, fmt::format("--tile: {} rows make no {} tiles; ask for fewer",
                                                  area.undivided.height(), request.tile->count));
        }
        area.crop = stripOf(area.undivided, *request.tile);
    }
    const PixelBox box = area.crop.value_or(area.undivided);
    if (static_cast<double>(box.width()) * box.height() > kMaxPixels) {
        throw Error(Fault::Usage,
                    fmt::format("{}x{} pixels are too many at once; render crops or tiles of it",
                                box.width(), box.height()));
    }
    return area;
}

}  // namespace tavora::studio
