#include "studio/render/cache/cached_path.h"

#include <algorithm>
#include <cmath>

#include "studio/scene/lighting/area_light.h"

namespace tavora::studio {
namespace {

// The record of a hit is a row of words: the hit, the node after it, then some bits a light.
constexpr std::size_t kMesh = 0;
constexpr std::size_t kTriangle = 1;
constexpr std::size_t kNext = 2;
constexpr std::size_t kLights = 3;

// Those bits: first two that say what is known. Where there are area lights, then how many
// of how many points of the light are visible; of none: that fraction is not kept.
constexpr std::size_t kKindBits = 2;
constexpr std::uint32_t kUnknownVisibility = 0;
constexpr std::uint32_t kNone = 1;
constexpr std::uint32_t kAll = 2;
constexpr std::uint32_t kPart = 3;
constexpr std::size_t kPointBits = 7;
constexpr std::size_t kFractionBits = 16;
constexpr std::size_t kWordBits = 32;
static_assert(kAreaPoints < 1U << kPointBits && kKindBits + 2 * kPointBits <= kFractionBits);

std::size_t bitsPerLight(const CachedLights& lights) {
    return lights.haveAreas ? kFractionBits : kKindBits;
}

std::size_t wordsFor(const CachedLights& lights) {
    return (lights.count * bitsPerLight(lights) + kWordBits - 1) / kWordBits;
}

/// The fewest points whose mean is `fraction` to the bit; 0 of 0 when there are none.
std::uint32_t pointsFor(double fraction) {
    for (std::uint32_t points = 1; points <= kAreaPoints; ++points) {
        const double visible = std::round(fraction * points);
        if (visible / points == fraction)
            return static_cast<std::uint32_t>(visible) | points << kPointBits;
    }
    return 0;
}

Visibility visibilityOf(std::uint32_t coded) {
    const std::uint32_t points = coded >> kPointBits;
    if (points == 0) return Visibility();
    return Visibility(static_cast<double>(coded & ((1U << kPointBits) - 1)) / points);
}

/// In `bits` bits.
std::uint32_t encode(double fraction, std::size_t bits) {
    if (fraction == 0) return kNone;
    if (fraction == 1) return kAll;
    return bits < kFractionBits ? kPart : kPart | pointsFor(fraction) << kKindBits;
}

Visibility decode(std::uint32_t code) {
    constexpr std::uint32_t kKinds = (1U << kKindBits) - 1;
    switch (code & kKinds) {
        case kUnknownVisibility:
            return Visibility();
        case kNone:
            return Visibility(0);
        case kAll:
            return Visibility(1);
        default:
            return visibilityOf(code >> kKindBits);
    }
}

constexpr CachedPath::Node kFirst = 0xfffffffe;  // the node in the sample's layer
constexpr std::uint32_t kUnknownNext = 0;
constexpr std::uint32_t kNoNext = 0xfffffffd;

// As mesh of a first hit.
constexpr std::uint32_t kUnknown = Hit::kNone - 1;

constexpr std::size_t kGrowth = 64;  // nodes

constexpr double kUnknownAlpha = -1;

void write(const Hit& hit, std::uint32_t* node) {
    node[kMesh] = hit.mesh;
    node[kTriangle] = hit.triangle;
}

Hit read(const std::uint32_t* node) {
    return {node[kMesh], node[kTriangle]};
}

}  // namespace

std::uint32_t* CachedPath::record(Node node) const {
    return node == kFirst ? first_ : &tile_->further_[node];
}

CachedPath::Step CachedPath::next(Node& node, Hit& hit) const {
    if (first_ == nullptr || node == kLost) return Step::Unknown;
    Node next = kFirst;
    if (node == kStart) {
        const Hit first = read(first_);
        if (first.mesh == kUnknown) return Step::Unknown;
        if (first.isNone()) return Step::Miss;
    } else {
        next = record(node)[kNext];
        if (next == kUnknownNext) return Step::Unknown;
        if (next == kNoNext) return Step::Miss;
    }
    node = next;
    hit = read(record(next));
    return Step::Hit;
}

void CachedPath::keep(Node& node, const Hit& hit) {
    if (first_ == nullptr || node == kLost) return;
    if (node == kStart) {
        write(hit, first_);
        node = kFirst;
        if (BaseColor* color = baseColorOf(node)) color->alpha = kUnknownAlpha;
        return;
    }
    const Node next = hit.isNone() ? kNoNext : tile_->addFurther(hit);
    if (next != kLost) record(node)[kNext] = next;
    node = next;
}

Visibility CachedPath::visibility(Node node, std::size_t light) const {
    if (first_ == nullptr || node == kLost) return Visibility();
    const std::size_t bit = tile_->bitAt(light);
    const std::uint32_t word = record(node)[kLights + bit / kWordBits];
    return decode(word >> bit % kWordBits & ((1U << tile_->lightBits_) - 1));
}

void CachedPath::keepVisibility(Node node, std::size_t light, Visibility visibility) {
    if (first_ == nullptr || node == kLost) return;
    const std::size_t bit = tile_->bitAt(light);
    record(node)[kLights + bit / kWordBits] |= encode(visibility.fraction(), tile_->lightBits_)
                                               << bit % kWordBits;
}

BaseColor* CachedPath::baseColorOf(Node node) const {
    return node == kFirst && pixel_ != kNoPixel ? tile_->firstBaseColor(pixel_) : nullptr;
}

const BaseColor* CachedPath::baseColor(Node node) const {
    const BaseColor* color = baseColorOf(node);
    return color != nullptr && color->alpha != kUnknownAlpha ? color : nullptr;
}

void CachedPath::keepBaseColor(Node node, const BaseColor& color) {
    if (node != kFirst || pixel_ == kNoPixel || !tile_->makeBaseColors()) return;
    *tile_->firstBaseColor(pixel_) = color;
}

bool CacheBudget::take(std::size_t bytes) {
    const std::size_t before = taken_.fetch_add(bytes);
    if (before <= limit_ && bytes <= limit_ - before) return true;
    taken_ -= bytes;
    exceeded_ = true;
    return false;
}

TileCache::TileCache(std::size_t pixels, int samples, const CachedLights& lights,
                     CacheBudget& budget)
    : pixels_(pixels),
      lightBits_(bitsPerLight(lights)),
      stride_(kLights + wordsFor(lights)),
      budget_(&budget),
      layers_(static_cast<std::size_t>(samples)) {}

void TileCache::open(const CacheAge& age) {
    // Node 0 is none: its place means that nothing is known.
    if (age.view != age_.view) {
        further_.resize(std::min(further_.size(), stride_));
    } else if (age.lights != age_.lights && further_.size() > stride_) {
        clearLights(&further_[stride_], further_.size() / stride_ - 1);
    }
    age_ = age;
}

CachedPath TileCache::path(std::size_t pixel, std::size_t sample) {
    Layer& layer = layers_[sample];
    if (layer.nodes == nullptr && !make(layer)) return {};
    refresh(layer);
    return {*this, &layer.nodes[pixel * stride_], sample == 0 ? pixel : CachedPath::kNoPixel};
}

std::size_t TileCache::keptSamples() const {
    const auto layers = std::count_if(layers_.begin(), layers_.end(),
                                      [](const Layer& layer) { return layer.nodes != nullptr; });
    return static_cast<std::size_t>(layers) * pixels_;
}

bool TileCache::make(Layer& layer) {
    const std::size_t words = pixels_ * stride_;
    if (!budget_->take(words * sizeof(std::uint32_t))) return false;
    layer.nodes = std::make_unique<std::uint32_t[]>(words);
    return true;
}

/// Room for base colours, unless there is; false when there is none to be had.
bool TileCache::makeBaseColors() {
    if (baseColors_ != nullptr) return true;
    if (lacksRoom_ || !budget_->take(pixels_ * sizeof(BaseColor))) {
        lacksRoom_ = true;
        return false;
    }
    baseColors_ = std::make_unique<BaseColor[]>(pixels_);
    for (std::size_t i = 0; i < pixels_; ++i)
        baseColors_[i].alpha = kUnknownAlpha;
    return true;
}

void TileCache::refresh(Layer& layer) {
    if (layer.age.view != age_.view) {
        clear(layer.nodes.get(), pixels_);
    } else if (layer.age.lights != age_.lights) {
        clearLights(layer.nodes.get(), pixels_);
    }
    layer.age = age_;
}

void TileCache::clear(std::uint32_t* nodes, std::size_t count) const {
    std::fill_n(nodes, count * stride_, 0U);
    for (std::size_t i = 0; i < count; ++i)
        nodes[i * stride_ + kMesh] = kUnknown;
}

void TileCache::clearLights(std::uint32_t* nodes, std::size_t count) const {
    for (std::size_t i = 0; i < count; ++i)
        std::fill_n(&nodes[i * stride_ + kLights], stride_ - kLights, 0U);
}

/// The place of a new node for that hit; kLost when there is no room.
CachedPath::Node TileCache::addFurther(const Hit& hit) {
    const std::size_t place = std::max(further_.size(), stride_);
    if (!makeRoom(place + stride_)) return CachedPath::kLost;
    further_.resize(place + stride_);
    write(hit, &further_[place]);
    return static_cast<CachedPath::Node>(place);
}

bool TileCache::makeRoom(std::size_t words) {
    if (words <= further_.capacity()) return true;
    const std::size_t room = std::max(words, further_.capacity() * 3 / 2) + kGrowth * stride_;
    if (!budget_->take((room - further_.capacity()) * sizeof(std::uint32_t))) return false;
    further_.reserve(room);
    return true;
}

}  // namespace tavora::studio
