#include "studio/render/known_shadows.h"

#include <algorithm>

namespace tavora::studio {
namespace {

/// Share of a distance by which pixels that show one another's surface may lie
/// apart: one mesh may show in front of itself, in another light.
constexpr float kApart = 0.02F;

/// So many pixels tell of what nothing is in front of.
constexpr int kEnough = 6;
/// Beside the edge of what is in front slivers of a shadow may show that fall
/// between the samples of a few pixels.
constexpr int kEnoughBehind = 8;

}  // namespace

bool KnownShadows::Layer::holds(std::uint32_t other, float distance) const {
    return other == mesh && distance >= nearest * (1 - kApart) &&
           distance <= farthest * (1 + kApart);
}

void KnownShadows::add(const MeshLights& met) {
    if (met.mesh == MeshLights::kNone) return;
    for (Layer& layer : std::span(layers_.data(), count_)) {
        if (!layer.holds(met.mesh, met.distance)) continue;
        layer.nearest = std::min(layer.nearest, met.distance);
        layer.farthest = std::max(layer.farthest, met.distance);
        layer.lights.note(met.lights);
        ++layer.pixels;
        return;
    }
    if (count_ == kMost) return;
    layers_[count_++] = {met.mesh, met.distance, met.distance, 1, met.lights};
}

bool KnownShadows::isBehindOthers(const Layer& layer) const {
    return std::any_of(layers().begin(), layers().end(),
                       [&](const Layer& other) { return other.nearest < layer.nearest; });
}

const LightsMet* KnownShadows::at(std::uint32_t mesh, float distance) const {
    for (const Layer& layer : layers()) {
        if (!layer.holds(mesh, distance)) continue;
        const int enough = isBehindOthers(layer) ? kEnoughBehind : kEnough;
        return layer.pixels >= enough ? &layer.lights : nullptr;
    }
    return nullptr;
}

}  // namespace tavora::studio
