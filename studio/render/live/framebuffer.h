#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "studio/render/image/accumulator.h"
#include "studio/render/image/picture.h"
#include "studio/render/live/live_picture.h"
#include "studio/render/material/surface_set.h"

namespace tavora::studio {

/// A pixel at work: its first `count` samples, summed.
struct FramebufferPixel {
    Accumulator sum;
    SurfaceSet shaded;  ///< surfaces whose shading went into `sum`
    int count = 0;
};

/// A tile of pixels, and what is known of all of them, so that a change need
/// not look at each. `shaded` and `minSamples` err on the safe side.
struct FramebufferTile {
    PixelBox box;
    SurfaceSet shaded;   ///< holds what the pixels' sets hold
    int minSamples = 0;  ///< no pixel has fewer samples
    std::uint64_t samples = 0;
    std::uint64_t emptyPixels = 0;
};

/// The pixels of a live picture, in tiles. Any number of threads may work on
/// it, each on tiles of its own.
class Framebuffer {
  public:
    /// Throws std::bad_alloc.
    Framebuffer(int width, int height);

    int width() const { return width_; }
    int height() const { return height_; }
    std::size_t pixels() const { return pixels_.size(); }

    std::size_t tiles() const { return tiles_.size(); }
    FramebufferTile& tile(std::size_t number) { return tiles_[number]; }

    FramebufferPixel& pixel(int x, int y) { return pixels_[offset(x, y)]; }
    /// What a pixel shows, 4 bytes as in LiveFrame.
    std::uint8_t* displayed(int x, int y) { return &displayed_[offset(x, y) * 4]; }

    /// Empties the pixels of a tile into which the shading of `surfaces` went.
    void empty(FramebufferTile& tile, SurfaceSet surfaces);
    /// Empties all pixels.
    void clear();

    /// Of all tiles. No thread may work on the framebuffer meanwhile.
    std::uint64_t samples() const;
    std::uint64_t emptyPixels() const;

    /// The picture as it stands. Pixels without a sample show the upper left
    /// one of their block of `blockSize` x `blockSize`. No thread may work on
    /// the framebuffer meanwhile.
    LiveFrame frame(int blockSize) const;

  private:
    std::size_t offset(int x, int y) const {
        return static_cast<std::size_t>(y) * static_cast<std::size_t>(width_) +
               static_cast<std::size_t>(x);
    }

    int width_;
    int height_;
    std::vector<FramebufferTile> tiles_;
    std::vector<FramebufferPixel> pixels_;
    std::vector<std::uint8_t> displayed_;
};

}  // namespace tavora::studio
