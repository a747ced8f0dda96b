#include "studio/render/shadow_stream.h"

#include "studio/render/hit_filters.h"

namespace tavora::studio {

std::span<const double> ShadowStream::trace() {
    return trace(rays_.embree());
}

std::span<const double> ShadowStream::trace(const RTCRayNp& rays) {
    RayContext context = rayContext(*scene_, RTC_INTERSECT_CONTEXT_FLAG_COHERENT);
    context.shadows = progress_.data();
    if (areLimited_) context.embree.filter = kLimitFilter;
    rtcOccludedNp(scene_->embree(), &context.embree, &rays, static_cast<unsigned>(count_));
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

std::span<const double> ShadowStream::traceToSky(const ShadowStarts& starts,
                                                 std::span<const std::uint32_t> from,
                                                 const Imath::V3d& direction) {
    clear();
    count_ = from.size();
    rays_.turnToSky(count_, embreeDirection(direction));
    RTCRayNp rays = rays_.embree();
    const RTCRayNp& places = starts.embree();
    if (count_ == starts.size() && !scene_->judgesShadows()) {
        // The usual case: as they stand.
        rays.org_x = places.org_x;
        rays.org_y = places.org_y;
        rays.org_z = places.org_z;
        return trace(rays);
    }
    count_ = 0;
    for (const std::uint32_t start : from) {
        rays_.setStart(count_, {places.org_x[start], places.org_y[start], places.org_z[start]});
        progress_[count_++] = {{}, starts[start].spot, 0, starts[start].spared, 0, true, false};
    }
    return trace(rays);
}

}  // namespace tavora::studio
