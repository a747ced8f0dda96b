#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <vector>

#include "studio/render/ray_scene.h"
#include "studio/render/surface_traits.h"

namespace tavora::studio {

/// Share of a light that reaches a hit, as far as it is kept.
struct KeptShare {
    bool isKnown = false;  ///< at least whether it is all, nothing or a part
    double share = -1;     ///< 0..1; negative where it has to be traced
};

/// The lights of a picture, as paths keep what is known of them: all, nothing
/// or a part of each; where lights have a size, also the part that shadows of
/// solid surfaces leave.
struct KeptLights {
    std::size_t count = 0;
    bool haveSizes = false;

    bool operator==(const KeptLights&) const = default;
};

class TilePaths;

/// The hits along one sample's viewing ray, and which lights reach them, as far
/// as they are known; of a pixel's first sample, which the first picture after a
/// change waits for, also the own colour at the first hit. What becomes known is
/// kept if there is room. One that is default-made keeps nothing.
class KeptPath {
  public:
    /// A hit of the path.
    using Place = std::uint32_t;
    static constexpr Place kStart = 0;  ///< before the first hit
    /// A hit that is not kept; neither are those beyond.
    static constexpr Place kLost = 0xffffffff;

    enum class Step { Hit, Miss, Unknown };

    KeptPath() = default;
    /// `first` is the node of the first hit, `pixel` the one whose first sample
    /// this is, or kNoPixel.
    KeptPath(TilePaths& tile, std::uint32_t* first, std::size_t pixel)
        : tile_(&tile), first_(first), pixel_(pixel) {}
    static constexpr std::size_t kNoPixel = std::numeric_limits<std::size_t>::max();

    /// Goes on from `place` to the next hit, if that is known.
    Step next(Place& place, Hit& hit) const;
    /// Keeps the hit after `place`, null for none, and goes on to it.
    void keep(Place& place, const Hit* hit);

    KeptShare share(Place place, std::size_t light) const;
    void keepShare(Place place, std::size_t light, double share);

    /// Null where it is not known; valid until the next call.
    const OwnColor* ownColor(Place place) const;
    void keepOwnColor(Place place, const OwnColor& own);

  private:
    std::uint32_t* node(Place place) const;
    OwnColor* ownColorAt(Place place) const;

    TilePaths* tile_ = nullptr;
    std::uint32_t* first_ = nullptr;
    std::size_t pixel_ = kNoPixel;
};

/// Bytes that paths may take, and have taken. Any thread.
class PathBudget {
  public:
    explicit PathBudget(std::size_t limit) : limit_(limit) {}

    /// False, and nothing taken, when it would be too much.
    bool take(std::size_t bytes);
    std::size_t taken() const { return taken_; }
    bool wasExceeded() const { return exceeded_; }

  private:
    const std::size_t limit_;
    std::atomic<std::size_t> taken_{0};
    std::atomic<bool> exceeded_{false};
};

/// How old what is kept may be: what was kept under other numbers is void.
struct PathAge {
    std::uint32_t view = 1;
    std::uint32_t lights = 1;
};

/// The paths of a tile's samples. One thread at a time.
class TilePaths {
  public:
    /// `budget` must outlive it.
    TilePaths(std::size_t pixels, int samples, const KeptLights& lights, PathBudget& budget);

    /// Before paths are asked for: forgets what is void.
    void open(const PathAge& age);
    /// The path of a pixel's sample, valid until open() is called again.
    /// Throws std::bad_alloc.
    KeptPath path(std::size_t pixel, std::size_t sample);

    /// Samples for whose paths there is room so far.
    std::size_t keptSamples() const;

  private:
    friend class KeptPath;

    /// The first hits of all pixels' samples of one number.
    struct Layer {
        std::unique_ptr<std::uint32_t[]> nodes;
        PathAge age{0, 0};
    };
    bool make(Layer& layer);
    void refresh(Layer& layer);
    void clear(std::uint32_t* nodes, std::size_t count) const;
    void clearLights(std::uint32_t* nodes, std::size_t count) const;
    std::size_t bitAt(std::size_t light) const { return light * lightBits_; }
    KeptPath::Place addFurther(const Hit& hit);
    OwnColor* ownColor(std::size_t pixel) const {
        return ownColors_ != nullptr ? &ownColors_[pixel] : nullptr;
    }
    bool makeOwnColors();
    bool makeRoom(std::size_t words);

    std::size_t pixels_;
    std::size_t lightBits_;  ///< of each light
    std::size_t stride_;     ///< words of a node
    PathBudget* budget_;
    PathAge age_{0, 0};
    std::vector<Layer> layers_;  ///< by sample
    /// At first hits of first samples, where some is known; alpha below 0: not known.
    std::unique_ptr<OwnColor[]> ownColors_;
    bool lacksRoom_ = false;              ///< for those
    std::vector<std::uint32_t> further_;  ///< nodes of hits beyond the first
};

}  // namespace tavora::studio
