#include "studio/render/view_samples.h"

#include <algorithm>

namespace tavora::studio {

ViewSampler::ViewSampler(const RayScene& scene, const LightSet& lights, const LaneShaders& shaders,
                         const View& view)
    : view_(&view),
      shader_(scene, lights, shaders),
      bundle_(scene, lights),
      rays_(bundle_.room(), view.rayThrough(0, 0)),
      known_(bundle_.room()) {}

void ViewSampler::look(std::span<const ViewPlace> places, std::span<ViewSample> samples,
                       bool notesLights) {
    for (std::size_t first = 0; first < places.size(); first += rays_.size()) {
        const std::size_t count = std::min(rays_.size(), places.size() - first);
        lookTogether(places.subspan(first, count), samples.subspan(first, count), notesLights);
    }
}

/// At most as many places as the bundle has room for.
void ViewSampler::lookTogether(std::span<const ViewPlace> places, std::span<ViewSample> samples,
                               bool notesLights) {
    for (std::size_t i = 0; i < places.size(); ++i) {
        view_->aim(places[i].at.x, places[i].at.y, rays_[i]);
        known_[i] = places[i].known;
    }
    bundle_.trace({rays_.data(), places.size()}, known_, shader_);
    for (std::size_t i = 0; i < places.size(); ++i) {
        if (const MetSurface* met = bundle_.met(i)) {
            seeFrom(shader_, decoder_, rays_[i], *met, bundle_.lights(i), notesLights, samples[i]);
        } else {
            samples[i] = {};
        }
    }
}

}  // namespace tavora::studio
