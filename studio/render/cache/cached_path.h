#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <vector>

#include "studio/render/cache/visibility.h"
#include "studio/render/material/material.h"
#include "studio/render/trace/ray.h"

namespace tavora::studio {

/// The lights of a picture, as their visibilities are kept: whether all, nothing or a part of
/// each is seen; where there are area lights, also the part that opaque surfaces leave.
struct CachedLights {
    std::size_t count = 0;
    bool haveAreas = false;

    bool operator==(const CachedLights&) const = default;
};

class TileCache;

/// What is kept of one sample: the hits along its camera ray and the visibility of lights
/// there, as far as they are known; of a pixel's first sample, which the first picture after
/// a change waits for, also the base colour at the first hit. What becomes known is kept if
/// there is room. One that is default-made keeps nothing.
class CachedPath {
  public:
    /// A hit of the path.
    using Node = std::uint32_t;
    static constexpr Node kStart = 0;  ///< before the first hit
    /// A hit that is not kept; neither are those beyond.
    static constexpr Node kLost = 0xffffffff;

    enum class Step { Hit, Miss, Unknown };

    CachedPath() = default;
    /// `first` is the record of the first hit, `pixel` the one whose first sample this is, or
    /// kNoPixel.
    CachedPath(TileCache& tile, std::uint32_t* first, std::size_t pixel)
        : tile_(&tile), first_(first), pixel_(pixel) {}
    static constexpr std::size_t kNoPixel = std::numeric_limits<std::size_t>::max();

    bool isKept() const { return first_ != nullptr; }

    /// Goes on from `node` to the next hit, if that is known.
    Step next(Node& node, Hit& hit) const;
    /// Keeps the hit after `node`, which may be none, and goes on to it.
    void keep(Node& node, const Hit& hit);

    Visibility visibility(Node node, std::size_t light) const;
    void keepVisibility(Node node, std::size_t light, Visibility visibility);

    /// Null where it is not known; valid until the next call.
    const BaseColor* baseColor(Node node) const;
    void keepBaseColor(Node node, const BaseColor& color);

  private:
    std::uint32_t* record(Node node) const;
    BaseColor* baseColorOf(Node node) const;

    TileCache* tile_ = nullptr;
    std::uint32_t* first_ = nullptr;
    std::size_t pixel_ = kNoPixel;
};

/// A hit on a cached path, or the path's start; or, by default, none that is cached: nothing is
/// known then, and nothing is kept.
struct CachedHit {
    CachedPath* path = nullptr;
    CachedPath::Node node = CachedPath::kStart;

    bool isCached() const { return path != nullptr; }
    /// These are CachedPath's, at `node`.
    CachedPath::Step next(Hit& hit) {
        return isCached() ? path->next(node, hit) : CachedPath::Step::Unknown;
    }
    void keep(const Hit& hit) {
        if (isCached()) path->keep(node, hit);
    }
    Visibility visibility(std::size_t light) const {
        return isCached() ? path->visibility(node, light) : Visibility();
    }
    void keepVisibility(std::size_t light, Visibility visibility) const {
        if (isCached()) path->keepVisibility(node, light, visibility);
    }
    const BaseColor* baseColor() const { return isCached() ? path->baseColor(node) : nullptr; }
    void keepBaseColor(const BaseColor& color) const {
        if (isCached()) path->keepBaseColor(node, color);
    }
};

/// Bytes that the cache may take, and has taken. Any thread.
class CacheBudget {
  public:
    explicit CacheBudget(std::size_t limit) : limit_(limit) {}

    /// False, and nothing taken, when it would be too much.
    bool take(std::size_t bytes);
    std::size_t taken() const { return taken_; }
    bool wasExceeded() const { return exceeded_; }

  private:
    const std::size_t limit_;
    std::atomic<std::size_t> taken_{0};
    std::atomic<bool> exceeded_{false};
};

/// Versions of what the cache depends on: what was kept under others is void.
struct CacheAge {
    std::uint32_t view = 1;
    std::uint32_t lights = 1;
};

/// The paths of the samples of a tile of the picture. One thread at a time.
class TileCache {
  public:
    /// `budget` must outlive it.
    TileCache(std::size_t pixels, int samples, const CachedLights& lights, CacheBudget& budget);

    /// Before paths are asked for: forgets what is void.
    void open(const CacheAge& age);
    /// The path of a pixel's sample, valid until open() is called again.
    /// Throws std::bad_alloc.
    CachedPath path(std::size_t pixel, std::size_t sample);

    /// Samples for whose paths there is room so far.
    std::size_t keptSamples() const;

  private:
    friend class CachedPath;

    /// The first hits of all pixels' samples of one number.
    struct Layer {
        std::unique_ptr<std::uint32_t[]> nodes;
        CacheAge age{0, 0};
    };
    bool make(Layer& layer);
    void refresh(Layer& layer);
    void clear(std::uint32_t* nodes, std::size_t count) const;
    void clearLights(std::uint32_t* nodes, std::size_t count) const;
    std::size_t bitAt(std::size_t light) const { return light * lightBits_; }
    CachedPath::Node addFurther(const Hit& hit);
    BaseColor* firstBaseColor(std::size_t pixel) const {
        return baseColors_ != nullptr ? &baseColors_[pixel] : nullptr;
    }
    bool makeBaseColors();
    bool makeRoom(std::size_t words);

    std::size_t pixels_;
    std::size_t lightBits_;  ///< of each light
    std::size_t stride_;     ///< words of a node
    CacheBudget* budget_;
    CacheAge age_{0, 0};
    std::vector<Layer> layers_;  ///< by sample
    /// At first hits of first samples, where some is known; alpha below 0: not known.
    std::unique_ptr<BaseColor[]> baseColors_;
    bool lacksRoom_ = false;              ///< for those
    std::vector<std::uint32_t> further_;  ///< nodes of hits beyond the first
};

}  // namespace tavora::studio
