#include "studio/render/live/framebuffer.h"

#include <algorithm>

#include "studio/render/threads/tiles.h"

namespace tavora::studio {
namespace {

FramebufferTile emptyTile(const PixelBox& box) {
    FramebufferTile tile;
    tile.box = box;
    tile.emptyPixels =
        static_cast<std::uint64_t>(box.width()) * static_cast<std::uint64_t>(box.height());
    return tile;
}

}  // namespace

Framebuffer::Framebuffer(int width, int height)
    : width_(width),
      height_(height),
      pixels_(static_cast<std::size_t>(width) * static_cast<std::size_t>(height)),
      displayed_(pixels_.size() * 4) {
    for (const PixelBox& box : tilesOf({0, 0, width, height}))
        tiles_.push_back(emptyTile(box));
}

void Framebuffer::empty(FramebufferTile& tile, SurfaceSet surfaces) {
    if (!tile.shaded.meets(surfaces)) return;
    FramebufferTile rest = emptyTile(tile.box);
    rest.minSamples = tile.minSamples;
    rest.emptyPixels = 0;
    for (int y = tile.box.top; y < tile.box.bottom; ++y) {
        for (int x = tile.box.left; x < tile.box.right; ++x) {
            FramebufferPixel& one = pixel(x, y);
            if (one.shaded.meets(surfaces)) one = {};
            rest.shaded.add(one.shaded);
            rest.minSamples = std::min(rest.minSamples, one.count);
            rest.samples += static_cast<std::uint64_t>(one.count);
            if (one.count == 0) ++rest.emptyPixels;
        }
    }
    tile = rest;
}

void Framebuffer::clear() {
    std::fill(pixels_.begin(), pixels_.end(), FramebufferPixel{});
    for (FramebufferTile& tile : tiles_)
        tile = emptyTile(tile.box);
}

std::uint64_t Framebuffer::samples() const {
    std::uint64_t sum = 0;
    for (const FramebufferTile& tile : tiles_)
        sum += tile.samples;
    return sum;
}

std::uint64_t Framebuffer::emptyPixels() const {
    std::uint64_t sum = 0;
    for (const FramebufferTile& tile : tiles_)
        sum += tile.emptyPixels;
    return sum;
}

LiveFrame Framebuffer::frame(int blockSize) const {
    LiveFrame frame;
    frame.width = width_;
    frame.height = height_;
    frame.blockSize = blockSize;
    frame.rgba = displayed_;
    if (blockSize == 1) return frame;
    for (int y = 0; y < height_; ++y) {
        for (int x = 0; x < width_; ++x) {
            if (pixels_[offset(x, y)].count > 0) continue;
            const std::size_t from = offset(x - x % blockSize, y - y % blockSize);
            std::copy_n(&displayed_[from * 4], 4, &frame.rgba[offset(x, y) * 4]);
        }
    }
    return frame;
}

}  // namespace tavora::studio
