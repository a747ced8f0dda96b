#include "studio/render/shadow_stream.h"

namespace tavora::studio {

std::span<const double> ShadowStream::trace() {
    for (ShadowProgress& progress : progress_)
        progress.leavesClear = true;
    RayContext context = rayContext(*scene_, RTC_INTERSECT_CONTEXT_FLAG_COHERENT);
    context.shadows = progress_.data();
    rtcOccluded1M(scene_->embree(), &context.embree, rays_.data(),
                  static_cast<unsigned>(rays_.size()), sizeof(RTCRay));
    shares_.clear();
    for (std::size_t i = 0; i < rays_.size(); ++i) {
        double share = isStopped(rays_[i]) ? 0 : 1;
        if (progress_[i].metClear && share != 0) {
            progress_[i].leavesClear = false;
            share = scene_->transmittance(rays_[i], progress_[i]);
        }
        shares_.push_back(share);
    }
    return shares_;
}

}  // namespace tavora::studio
