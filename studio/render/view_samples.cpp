#include "studio/render/view_samples.h"

namespace tavora::studio {

ViewSampler::ViewSampler(const RayScene& scene, const LightRig& lights, const LaneShaders& shaders,
                         const View& view, const std::optional<Imath::V3d>& background)
    : view_(&view), background_(&background), shader_(scene, lights, shaders) {}

void ViewSampler::look(std::span<const Imath::V2d> places, std::span<ViewSample> samples) {
    for (std::size_t i = 0; i < places.size(); ++i) {
        samples[i] = {};
        const Ray ray = view_->rayThrough(places[i].x, places[i].y);
        samples[i].sight = see(shader_, ray, *background_, &samples[i].first);
    }
}

}  // namespace tavora::studio
