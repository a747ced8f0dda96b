#pragma once

#include <ImathVec.h>
#include <cstdint>
#include <span>
#include <vector>

#include "studio/scene/scene.h"

namespace tavora::studio {

/// The mipmaps of an image: levels that halve in size, down to one texel. Colours are
/// averaged in linear light and stored sRGB-encoded; data is averaged as stored.
class TexturePyramid {
  public:
    /// `image` must have at least one pixel and must outlive the pyramid, which uses its
    /// pixels as the finest level. `isData` as in TextureUse.
    explicit TexturePyramid(const Image& image, bool isData = false);
    TexturePyramid(const TexturePyramid&) = delete;
    TexturePyramid& operator=(const TexturePyramid&) = delete;

    /// The bytes that a pyramid of `image` takes in addition to the image.
    static std::uint64_t sizeFor(const Image& image);

    /// RGBA at `uv` (after the texture transform; v grows downwards), each 0..1, as stored
    /// (colour sRGB-encoded). Wrapping and filters are those of `use`. `footprint` is the
    /// width, in UV units, to average over; 0 gives the finest level. Any thread.
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
    std::vector<std::vector<std::uint8_t>> halves_;  ///< the pixels of the levels after the first
};

/// Applies the texture transform of `use` to a mesh's UV coordinates. Formula: the glTF
/// extension KHR_texture_transform.
Imath::V2d transformUv(const TextureUse& use, const Imath::V2d& uv);

}  // namespace tavora::studio
