#include "studio/render/shadow_stream.h"

namespace tavora::studio {

std::span<const double> ShadowStream::trace() {
    RayContext context = rayContext(*scene_, RTC_INTERSECT_CONTEXT_FLAG_COHERENT);
    context.shadows = progress_.data();
    rtcOccluded1M(scene_->embree(), &context.embree, rays_.data(), static_cast<unsigned>(count_),
                  sizeof(RTCRay));
    for (std::size_t i = 0; i < count_; ++i) {
        shares_[i] = isStopped(rays_[i]) ? 0 : 1;
        if (!progress_[i].metClear || isStopped(rays_[i])) continue;
        progress_[i].leavesClear = false;
        shares_[i] = scene_->transmittance(rays_[i], progress_[i]);
    }
    return {shares_.data(), count_};
}

}  // namespace tavora::studio
