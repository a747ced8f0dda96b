#include "studio/render/live_canvas.h"

#include <algorithm>

#include "studio/render/tiles.h"

namespace tavora::studio {
namespace {

LiveTile emptyTile(const PixelBox& box) {
    LiveTile tile;
    tile.box = box;
    tile.emptyPixels =
        static_cast<std::uint64_t>(box.width()) * static_cast<std::uint64_t>(box.height());
    return tile;
}

}  // namespace

LiveCanvas::LiveCanvas(int width, int height)
    : width_(width),
      height_(height),
      pixels_(static_cast<std::size_t>(width) * static_cast<std::size_t>(height)),
      shown_(pixels_.size() * 4) {
    for (const PixelBox& box : tilesOf({0, 0, width, height}))
        tiles_.push_back(emptyTile(box));
}

void LiveCanvas::empty(LiveTile& tile, SurfaceSet surfaces) {
    if (!tile.shaded.meets(surfaces)) return;
    LiveTile left = emptyTile(tile.box);
    left.least = tile.least;
    left.emptyPixels = 0;
    for (int y = tile.box.top; y < tile.box.bottom; ++y) {
        for (int x = tile.box.left; x < tile.box.right; ++x) {
            LivePixel& one = pixel(x, y);
            if (one.shaded.meets(surfaces)) one = {};
            left.shaded.add(one.shaded);
            left.least = std::min(left.least, one.count);
            left.samples += static_cast<std::uint64_t>(one.count);
            if (one.count == 0) ++left.emptyPixels;
        }
    }
    tile = left;
}

void LiveCanvas::clear() {
    std::fill(pixels_.begin(), pixels_.end(), LivePixel{});
    for (LiveTile& tile : tiles_)
        tile = emptyTile(tile.box);
}

std::uint64_t LiveCanvas::samples() const {
    std::uint64_t sum = 0;
    for (const LiveTile& tile : tiles_)
        sum += tile.samples;
    return sum;
}

std::uint64_t LiveCanvas::emptyPixels() const {
    std::uint64_t sum = 0;
    for (const LiveTile& tile : tiles_)
        sum += tile.emptyPixels;
    return sum;
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
