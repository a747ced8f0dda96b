#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>

#include "studio/render/film.h"
#include "studio/render/known_shadows.h"
#include "studio/render/picture.h"
#include "studio/render/seen_levels.h"
#include "studio/render/view_samples.h"

namespace tavora::studio {

/// What is kept of a pixel's samples between one round of samples and the next.
struct PixelState {
    /// First samples of which it is kept what they show.
    static constexpr std::size_t kKept = 4;

    std::array<float, 4> sum{};  ///< scene-linear RGB, premultiplied, and alpha
    std::array<SeenLevels, kKept> first{};
    SeenLevels least{};  ///< of all samples
    SeenLevels most{};
    /// Darkest and brightest sample near each side: left, right, upper, lower.
    std::array<std::uint8_t, 4> leastAt{255, 255, 255, 255};
    std::array<std::uint8_t, 4> mostAt{};
    MeshLights lights;           ///< met in the first round, on what its first sample saw
    Imath::V3f normal{0, 0, 0};  ///< there
    std::uint16_t count = 0;     ///< of samples
    bool mixed = false;          ///< samples see several meshes, or a crease
    bool wanting = false;        ///< gets samples in the next round

    std::uint32_t mesh() const { return lights.mesh; }  ///< seen by the first sample
};

/// Where a picture needs more samples. Decides by what the samples show and by
/// nothing else, so that a pixel gets the same samples whoever renders it, and in
/// a crop as in the whole picture.
///
/// Threads may work on different tiles: begin(), add(), settle() and decide() change
/// pixels of their own tile only. decide() and the first add() of pixels must not run
/// at the same time as the others.
class Refinement {
  public:
    static constexpr std::align_val_t kAlignment{1U << 21U};  ///< a large page's

    /// `window` is what is wanted of a picture that fills `whole`. Throws
    /// std::bad_alloc.
    Refinement(const PixelBox& window, const PixelBox& whole);

    /// The window and some pixels around it, by which its border is judged. All get
    /// the first round, and want the next who lie near enough.
    const PixelBox& area() const { return area_; }
    const PixelState& at(int x, int y) const { return pixels_[offset(x, y)]; }

    /// Before the first samples of a tile: until then nothing is known of its pixels.
    void begin(const PixelBox& tile);

    /// Adds the samples of a pixel that one round brought, and where in the
    /// pixel they lie.
    void add(int x, int y, std::span<const Imath::V2d> places, std::span<const ViewSample> samples);

    /// The pixel is done: this is its average.
    void settle(int x, int y, const std::array<float, 4>& rgba);

    /// Decides which pixels of a tile want more, for the `round`th time, counted from
    /// 1. Returns how many do.
    std::size_t decide(const PixelBox& tile, int round);

    /// What the first round met of the lights in a pixel and its neighbours. Other
    /// threads may add() later rounds at the same time.
    KnownShadows shadowsAbout(int x, int y) const;

    /// Writes the average of a pixel's samples: scene-linear RGB, premultiplied,
    /// and alpha.
    void develop(int x, int y, float rgba[4]) const;

  private:
    struct Release {
        void operator()(PixelState* pixels) const { ::operator delete(pixels, kAlignment); }
    };
    std::size_t offset(int x, int y) const {
        return static_cast<std::size_t>(y - area_.top) * static_cast<std::size_t>(area_.width()) +
               static_cast<std::size_t>(x - area_.left);
    }
    bool wantsMore(int x, int y, int round) const;
    bool differsFromNeighbours(int x, int y) const;
    bool isReached(int x, int y) const;
    bool isReached(const PixelState& pixel, int x, int y, std::size_t side) const;

    PixelBox window_;
    PixelBox area_;
    /// Made tile by tile, by begin(): so the lanes do it together.
    std::unique_ptr<PixelState[], Release> pixels_;
};

}  // namespace tavora::studio
