#include "studio/render/shadow_stream.h"

namespace tavora::studio {

std::span<const double> ShadowStream::trace() {
    RayContext context = rayContext(*scene_, RTC_INTERSECT_CONTEXT_FLAG_COHERENT);
    context.shadows = progress_.data();
    rtcOccludedNp(scene_->embree(), &context.embree, &rays_.embree(),
                  static_cast<unsigned>(count_));
    for (std::size_t i = 0; i < count_; ++i)
        shares_[i] = isStoppedAt(rays_.farthest(i)) ? 0 : 1;
    if (scene_->judgesShadows()) judge();
    return {shares_.data(), count_};
}

/// How much passes the clear surfaces that were met.
void ShadowStream::judge() {
    for (std::size_t i = 0; i < count_; ++i) {
        if (!progress_[i].metClear || shares_[i] == 0) continue;
        progress_[i].leavesClear = false;
        shares_[i] = scene_->transmittance(rays_.alone(i), progress_[i]);
    }
}

std::span<const double> ShadowStream::traceToSky(const Imath::V3d& direction) {
    rays_.turnToSky(count_, embreeDirection(direction));
    return trace();
}

}  // namespace tavora::studio
