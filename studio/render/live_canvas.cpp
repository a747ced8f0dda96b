#include "studio/render/live_canvas.h"

#include <algorithm>

#include "studio/render/tiles.h"

namespace tavora::studio {

LiveCanvas::LiveCanvas(int width, int height)
    : width_(width),
      height_(height),
      tiles_(tilesOf({0, 0, width, height})),
      pixels_(static_cast<std::size_t>(width) * static_cast<std::size_t>(height)),
      shown_(pixels_.size() * 4) {}

LiveCanvas::Tally LiveCanvas::empty(const PixelBox& tile, SurfaceSet surfaces) {
    Tally tally;
    for (int y = tile.top; y < tile.bottom; ++y) {
        for (int x = tile.left; x < tile.right; ++x) {
            LivePixel& one = pixel(x, y);
            if (one.shaded.meets(surfaces)) one = {};
            tally.samples += static_cast<std::uint64_t>(one.count);
            if (one.count == 0) ++tally.emptyPixels;
        }
    }
    return tally;
}

void LiveCanvas::clear() {
    std::fill(pixels_.begin(), pixels_.end(), LivePixel{});
}

LiveFrame LiveCanvas::frame(int coarseness) const {
    LiveFrame frame;
    frame.width = width_;
    frame.height = height_;
    frame.coarseness = coarseness;
    frame.rgba = shown_;
    if (coarseness == 1) return frame;
    for (int y = 0; y < height_; ++y) {
        for (int x = 0; x < width_; ++x) {
            if (pixels_[place(x, y)].count > 0) continue;
            const std::size_t from = place(x - x % coarseness, y - y % coarseness);
            std::copy_n(&shown_[from * 4], 4, &frame.rgba[place(x, y) * 4]);
        }
    }
    return frame;
}

}  // namespace tavora::studio
