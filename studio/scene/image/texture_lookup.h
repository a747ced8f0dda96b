#pragma once

#include <ImathVec.h>
#include <cstdint>
#include <span>
#include <vector>

#include "studio/scene/scene.h"

namespace tavora::studio {

/// An image ready to be looked up at any size: its pyramid of halved levels.
/// Colours are averaged in linear light and stored sRGB-encoded, data as it is.
class TexturePyramid {
  public:
    /// `image` must hold a pixel and outlive the pyramid, which reads its finest
    /// level there.
    explicit TexturePyramid(const Image& image, bool isData = false);
    TexturePyramid(const TexturePyramid&) = delete;
    TexturePyramid& operator=(const TexturePyramid&) = delete;

    /// Bytes that a pyramid of `image` takes beside the image.
    static std::uint64_t sizeFor(const Image& image);

    /// RGBA at `uv` (after the texture transform; v grows downwards), each 0..1,
    /// as stored (colour sRGB-encoded). `footprint` is the width in UV units that
    /// the result should average over; 0 asks for the finest level.
    /// Any number of threads.
    Imath::V4d lookUp(const TextureUse& use, const Imath::V2d& uv, double footprint) const;

  private:
    struct Level {
        int width;
        int height;
        std::span<const std::uint8_t> rgba;

        const std::uint8_t* texel(int x, int y) const {
            const auto row = static_cast<std::size_t>(y) * static_cast<std::size_t>(width);
            return &rgba[(row + static_cast<std::size_t>(x)) * 4];
        }
    };
    void addHalved(bool isData);
    static Imath::V4d sample(const Level& level, Filter filter, const TextureUse& use,
                             const Imath::V2d& uv);
    static Imath::V4d nearest(const Level& level, const TextureUse& use, const Imath::V2d& uv);
    static Imath::V4d bilinear(const Level& level, const TextureUse& use, const Imath::V2d& uv);

    std::vector<Level> levels_;
    std::vector<std::vector<std::uint8_t>> halves_;  ///< what the levels after the first hold
};

/// The UV at which `use` reads its image for a vertex coordinate.
Imath::V2d transformUv(const TextureUse& use, const Imath::V2d& uv);

}  // namespace tavora::studio
