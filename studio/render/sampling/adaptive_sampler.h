#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>

#include "studio/render/cache/neighbour_visibility.h"
#include "studio/render/image/accumulator.h"
#include "studio/render/image/picture.h"
#include "studio/render/image/pixel8.h"
#include "studio/render/shade/camera_sampler.h"

namespace tavora::studio {

/// What is kept of a pixel's samples from one pass of samples to the next.
struct PixelState {
    /// First samples of which it is kept what they show.
    static constexpr std::size_t kKept = 4;

    std::array<float, 4> sum{};  ///< scene-linear RGB, premultiplied, and alpha
    std::array<Pixel8, kKept> first{};
    Pixel8 min{};  ///< of all samples, by channel
    Pixel8 max{};
    /// Darkest and brightest sample near each side: left, right, upper, lower.
    std::array<std::uint8_t, 4> minAtSide{255, 255, 255, 255};
    std::array<std::uint8_t, 4> maxAtSide{};
    MeshVisibility seen;         ///< in the first pass, on the mesh of its first sample
    Imath::V3f normal{0, 0, 0};  ///< there
    std::uint16_t count = 0;     ///< of samples
    bool isMixed = false;        ///< samples see several meshes, or a crease
    bool needsSamples = false;   ///< gets samples in the next pass

    std::uint32_t mesh() const { return seen.mesh; }  ///< of the first sample
};

/// Where a picture needs more samples. Decides by what the samples show and by
/// nothing else, so that a pixel gets the same samples whoever renders it, and in
/// a crop as in the whole picture.
///
/// Threads may work on different tiles: begin(), add(), finalize() and decide() change pixels
/// of their own tile only. decide() and the first add() of pixels must not run at the same
/// time as the others.
class AdaptiveSampler {
  public:
    static constexpr std::align_val_t kAlignment{1U << 21U};  ///< a large page's

    /// `window` is what is wanted of a picture that fills `whole`. Throws
    /// std::bad_alloc.
    AdaptiveSampler(const PixelBox& window, const PixelBox& whole);

    /// The window and some pixels around it, by which the pixels at its border are judged. All
    /// get the first pass; the next go to those near enough.
    const PixelBox& area() const { return area_; }
    const PixelState& at(int x, int y) const { return pixels_[offset(x, y)]; }

    /// Before the first samples of a tile: until then nothing is known of its pixels.
    void begin(const PixelBox& tile);

    /// Adds the samples of a pixel that one pass brought, and where in the
    /// pixel they lie.
    void add(int x, int y, std::span<const Imath::V2d> positions,
             std::span<const ShadedSample> samples);

    /// The pixel is done: this is its average.
    void finalize(int x, int y, const std::array<float, 4>& rgba);

    /// Decides which pixels of a tile want more, for the `decision`th time, counted from
    /// 1. Returns how many do.
    std::size_t decide(const PixelBox& tile, int decision);

    /// What the first pass saw of the lights in a pixel and its neighbours. Other threads may
    /// add() later passes at the same time.
    NeighbourVisibility visibilityAround(int x, int y) const;

    /// Writes the average of a pixel's samples: scene-linear RGB, premultiplied,
    /// and alpha.
    void resolve(int x, int y, float rgba[4]) const;

  private:
    struct Release {
        void operator()(PixelState* pixels) const { ::operator delete(pixels, kAlignment); }
    };
    std::size_t offset(int x, int y) const {
        return static_cast<std::size_t>(y - area_.top) * static_cast<std::size_t>(area_.width()) +
               static_cast<std::size_t>(x - area_.left);
    }
    bool needsMore(int x, int y, int decision) const;
    bool differsFromNeighbours(int x, int y) const;
    bool isEdgeReaching(int x, int y) const;
    bool isEdgeReaching(const PixelState& pixel, int x, int y, std::size_t side) const;

    PixelBox window_;
    PixelBox area_;
    /// Constructed tile by tile, by begin(): so that the workers share that.
    std::unique_ptr<PixelState[], Release> pixels_;
};

}  // namespace tavora::studio
