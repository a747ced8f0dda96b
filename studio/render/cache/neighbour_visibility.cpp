#include "studio/render/cache/neighbour_visibility.h"

#include <algorithm>

namespace tavora::studio {
namespace {

/// Fraction of a distance by which pixels that show one another's surface may lie
/// apart: one mesh may show in front of itself, in another light.
constexpr float kTolerance = 0.02F;

/// So many pixels tell of what nothing is in front of.
constexpr int kEnough = 6;
/// Beside the edge of what is in front slivers of a shadow may show that fall
/// between the samples of a few pixels.
constexpr int kEnoughBehind = 8;

}  // namespace

bool NeighbourVisibility::Patch::holds(std::uint32_t other, float distance) const {
    return other == mesh && distance >= minDistance * (1 - kTolerance) &&
           distance <= maxDistance * (1 + kTolerance);
}

void NeighbourVisibility::add(const MeshVisibility& seen) {
    if (seen.mesh == MeshVisibility::kNone) return;
    for (Patch& patch : std::span(patches_.data(), count_)) {
        if (!patch.holds(seen.mesh, seen.distance)) continue;
        patch.minDistance = std::min(patch.minDistance, seen.distance);
        patch.maxDistance = std::max(patch.maxDistance, seen.distance);
        patch.lights.add(seen.lights);
        ++patch.pixels;
        return;
    }
    if (count_ == kMost) return;
    patches_[count_++] = {seen.mesh, seen.distance, seen.distance, 1, seen.lights};
}

bool NeighbourVisibility::isBehindOthers(const Patch& patch) const {
    return std::any_of(patches().begin(), patches().end(),
                       [&](const Patch& other) { return other.minDistance < patch.minDistance; });
}

const LightBits* NeighbourVisibility::at(std::uint32_t mesh, float distance) const {
    for (const Patch& patch : patches()) {
        if (!patch.holds(mesh, distance)) continue;
        const int enough = isBehindOthers(patch) ? kEnoughBehind : kEnough;
        return patch.pixels >= enough ? &patch.lights : nullptr;
    }
    return nullptr;
}

}  // namespace tavora::studio
