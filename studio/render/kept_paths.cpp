#include "studio/render/kept_paths.h"

#include <algorithm>
#include <cmath>

#include "studio/scene/lighting/area_light.h"

namespace tavora::studio {
namespace {

// A node is a row of words: the hit, the place of the node after it, then some
// bits a light.
constexpr std::size_t kMesh = 0;
constexpr std::size_t kTriangle = 1;
constexpr std::size_t kNext = 2;
constexpr std::size_t kLights = 3;

// Those bits: first two that say what is known. Where lights have sizes, then
// how many of how many points of the light reach the hit; of none: not kept.
constexpr std::size_t kKindBits = 2;
constexpr std::uint32_t kUnknownShare = 0;
constexpr std::uint32_t kNone = 1;
constexpr std::uint32_t kAll = 2;
constexpr std::uint32_t kPart = 3;
constexpr std::size_t kPointBits = 7;
constexpr std::size_t kFractionBits = 16;
constexpr std::size_t kWordBits = 32;
static_assert(kAreaPoints < 1U << kPointBits && kKindBits + 2 * kPointBits <= kFractionBits);

std::size_t bitsALight(const KeptLights& lights) {
    return lights.haveSizes ? kFractionBits : kKindBits;
}

std::size_t wordsFor(const KeptLights& lights) {
    return (lights.count * bitsALight(lights) + kWordBits - 1) / kWordBits;
}

/// The fewest points whose mean is `share` to the bit; 0 of 0 when there are none.
std::uint32_t fractionOf(double share) {
    for (std::uint32_t points = 1; points <= kAreaPoints; ++points) {
        const double reached = std::round(share * points);
        if (reached / points == share)
            return static_cast<std::uint32_t>(reached) | points << kPointBits;
    }
    return 0;
}

double shareOf(std::uint32_t fraction) {
    const std::uint32_t points = fraction >> kPointBits;
    if (points == 0) return -1;
    return static_cast<double>(fraction & ((1U << kPointBits) - 1)) / points;
}

/// `bits` of room.
std::uint32_t coded(double share, std::size_t bits) {
    if (share == 0) return kNone;
    if (share == 1) return kAll;
    return bits < kFractionBits ? kPart : kPart | fractionOf(share) << kKindBits;
}

KeptShare decoded(std::uint32_t code) {
    constexpr std::uint32_t kKinds = (1U << kKindBits) - 1;
    switch (code & kKinds) {
        case kUnknownShare:
            return {};
        case kNone:
            return {true, 0};
        case kAll:
            return {true, 1};
        default:
            return {true, shareOf(code >> kKindBits)};
    }
}

constexpr KeptPath::Place kFirst = 0xfffffffe;  // the node in the sample's layer
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

std::uint32_t* KeptPath::node(Place place) const {
    return place == kFirst ? first_ : &tile_->further_[place];
}

KeptPath::Step KeptPath::next(Place& place, Hit& hit) const {
    if (first_ == nullptr || place == kLost) return Step::Unknown;
    Place there = kFirst;
    if (place == kStart) {
        const Hit first = read(first_);
        if (first.mesh == kUnknown) return Step::Unknown;
        if (first.isNone()) return Step::Miss;
    } else {
        there = node(place)[kNext];
        if (there == kUnknownNext) return Step::Unknown;
        if (there == kNoNext) return Step::Miss;
    }
    place = there;
    hit = read(node(there));
    return Step::Hit;
}

void KeptPath::keep(Place& place, const Hit* hit) {
    if (first_ == nullptr || place == kLost) return;
    if (place == kStart) {
        write(hit != nullptr ? *hit : Hit{}, first_);
        place = kFirst;
        if (OwnColor* own = ownColorAt(place)) own->alpha = kUnknownAlpha;
        return;
    }
    const Place there = hit != nullptr ? tile_->addFurther(*hit) : kNoNext;
    if (there != kLost) node(place)[kNext] = there;
    place = there;
}

KeptShare KeptPath::share(Place place, std::size_t light) const {
    if (first_ == nullptr || place == kLost) return {};
    const std::size_t bit = tile_->bitAt(light);
    const std::uint32_t word = node(place)[kLights + bit / kWordBits];
    return decoded(word >> bit % kWordBits & ((1U << tile_->lightBits_) - 1));
}

void KeptPath::keepShare(Place place, std::size_t light, double share) {
    if (first_ == nullptr || place == kLost) return;
    const std::size_t bit = tile_->bitAt(light);
    node(place)[kLights + bit / kWordBits] |= coded(share, tile_->lightBits_) << bit % kWordBits;
}

OwnColor* KeptPath::ownColorAt(Place place) const {
    return place == kFirst && pixel_ != kNoPixel ? tile_->ownColor(pixel_) : nullptr;
}

const OwnColor* KeptPath::ownColor(Place place) const {
    const OwnColor* own = ownColorAt(place);
    return own != nullptr && own->alpha != kUnknownAlpha ? own : nullptr;
}

void KeptPath::keepOwnColor(Place place, const OwnColor& own) {
    if (place != kFirst || pixel_ == kNoPixel || !tile_->makeOwnColors()) return;
    *tile_->ownColor(pixel_) = own;
}

bool PathBudget::take(std::size_t bytes) {
    const std::size_t before = taken_.fetch_add(bytes);
    if (before <= limit_ && bytes <= limit_ - before) return true;
    taken_ -= bytes;
    exceeded_ = true;
    return false;
}

TilePaths::TilePaths(std::size_t pixels, int samples, const KeptLights& lights, PathBudget& budget)
    : pixels_(pixels),
      lightBits_(bitsALight(lights)),
      stride_(kLights + wordsFor(lights)),
      budget_(&budget),
      layers_(static_cast<std::size_t>(samples)) {}

void TilePaths::open(const PathAge& age) {
    // Node 0 is none: its place means that nothing is known.
    if (age.view != age_.view) {
        further_.resize(std::min(further_.size(), stride_));
    } else if (age.lights != age_.lights && further_.size() > stride_) {
        clearLights(&further_[stride_], further_.size() / stride_ - 1);
    }
    age_ = age;
}

KeptPath TilePaths::path(std::size_t pixel, std::size_t sample) {
    Layer& layer = layers_[sample];
    if (layer.nodes == nullptr && !make(layer)) return {};
    refresh(layer);
    return {*this, &layer.nodes[pixel * stride_], sample == 0 ? pixel : KeptPath::kNoPixel};
}

std::size_t TilePaths::keptSamples() const {
    const auto layers = std::count_if(layers_.begin(), layers_.end(),
                                      [](const Layer& layer) { return layer.nodes != nullptr; });
    return static_cast<std::size_t>(layers) * pixels_;
}

bool TilePaths::make(Layer& layer) {
    const std::size_t words = pixels_ * stride_;
    if (!budget_->take(words * sizeof(std::uint32_t))) return false;
    layer.nodes = std::make_unique<std::uint32_t[]>(words);
    return true;
}

/// Room for own colours, unless there is; false when there is none to be had.
bool TilePaths::makeOwnColors() {
    if (ownColors_ != nullptr) return true;
    if (lacksRoom_ || !budget_->take(pixels_ * sizeof(OwnColor))) {
        lacksRoom_ = true;
        return false;
    }
    ownColors_ = std::make_unique<OwnColor[]>(pixels_);
    for (std::size_t i = 0; i < pixels_; ++i)
        ownColors_[i].alpha = kUnknownAlpha;
    return true;
}

void TilePaths::refresh(Layer& layer) {
    if (layer.age.view != age_.view) {
        clear(layer.nodes.get(), pixels_);
    } else if (layer.age.lights != age_.lights) {
        clearLights(layer.nodes.get(), pixels_);
    }
    layer.age = age_;
}

void TilePaths::clear(std::uint32_t* nodes, std::size_t count) const {
    std::fill_n(nodes, count * stride_, 0U);
    for (std::size_t i = 0; i < count; ++i)
        nodes[i * stride_ + kMesh] = kUnknown;
}

void TilePaths::clearLights(std::uint32_t* nodes, std::size_t count) const {
    for (std::size_t i = 0; i < count; ++i)
        std::fill_n(&nodes[i * stride_ + kLights], stride_ - kLights, 0U);
}

/// The place of a new node for that hit; kLost when there is no room.
KeptPath::Place TilePaths::addFurther(const Hit& hit) {
    const std::size_t place = std::max(further_.size(), stride_);
    if (!makeRoom(place + stride_)) return KeptPath::kLost;
    further_.resize(place + stride_);
    write(hit, &further_[place]);
    return static_cast<KeptPath::Place>(place);
}

bool TilePaths::makeRoom(std::size_t words) {
    if (words <= further_.capacity()) return true;
    const std::size_t room = std::max(words, further_.capacity() * 3 / 2) + kGrowth * stride_;
    if (!budget_->take((room - further_.capacity()) * sizeof(std::uint32_t))) return false;
    further_.reserve(room);
    return true;
}

}  // namespace tavora::studio
