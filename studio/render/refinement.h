#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "studio/render/film.h"
#include "studio/render/known_shadows.h"
#include "studio/render/picture.h"
#include "studio/render/view_samples.h"

namespace tavora::studio {

/// What is kept of a pixel's samples between one round of samples and the next.
struct PixelState {
    std::array<float, 4> sum{};           ///< scene-linear RGB, premultiplied, and alpha
    std::array<std::uint8_t, 4> least{};  ///< of display-referred RGBA, 255 for 1
    std::array<std::uint8_t, 4> most{};
    /// Darkest and brightest sample near each side: left, right, upper, lower.
    std::array<std::uint8_t, 4> leastAt{255, 255, 255, 255};
    std::array<std::uint8_t, 4> mostAt{};
    /// Lights met in the first round, by mesh; that of the first sample comes first.
    std::array<MeshLights, 2> lights;
    std::uint16_t count = 0;  ///< of samples
    bool mixed = false;       ///< samples see several meshes, or a crease
    bool wanting = false;     ///< gets samples in the next round

    std::uint32_t mesh() const { return lights[0].mesh; }  ///< seen by the first sample
};

/// Where a picture needs more samples. Decides by what the samples show and by
/// nothing else, so that a pixel gets the same samples whoever renders it, and in
/// a crop as in the whole picture.
///
/// Threads may work on different tiles: add() and decide() change pixels of their
/// own tile only, and must not run at the same time.
class Refinement {
  public:
    /// `window` is what is wanted of a picture that fills `whole`. Throws
    /// std::bad_alloc.
    Refinement(const PixelBox& window, const PixelBox& whole);

    /// The window and two pixels around it, by which its border is judged.
    const PixelBox& area() const { return area_; }
    const PixelState& at(int x, int y) const { return pixels_[offset(x, y)]; }

    /// Adds the samples of a pixel that one round brought, and where in the
    /// pixel they lie.
    void add(int x, int y, std::span<const Imath::V2d> places, std::span<const ViewSample> samples,
             LightMeter& meter);

    /// Decides which pixels of a tile want more. `round` is how many they have had.
    void decide(const PixelBox& tile, int round);

    /// How many pixels of a tile want more.
    std::size_t wanting(const PixelBox& tile) const;

    /// What the first round met of the lights in a pixel and its neighbours. Other
    /// threads may add() later rounds at the same time.
    KnownShadows shadowsAbout(int x, int y) const;

    /// Writes the average of a pixel's samples: scene-linear RGB, premultiplied,
    /// and alpha.
    void develop(int x, int y, float rgba[4]) const;

  private:
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
    std::vector<PixelState> pixels_;
};

}  // namespace tavora::studio
