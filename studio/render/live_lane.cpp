#include "studio/render/live_lane.h"

#include "studio/render/display_levels.h"
#include "studio/render/sight.h"
#include "studio/services/messages.h"
#include "studio/services/service_binding.h"

namespace tavora::studio {

LiveLane::LiveLane(const RayScene& scene, const std::filesystem::path& module, bool speaks)
    : scene_(&scene), speaks_(speaks), shaders_(scene.index(), module) {
    worn_.resize(scene.index().scene().surfaces.size());
}

SurfaceSet LiveLane::adopt(const LiveWish& wish) {
    const ServiceBinding binding(scene_->index(), *wish.lights);
    std::optional<QuietMessages> quiet;
    if (!speaks_) quiet.emplace();
    SurfaceSet changed;
    const std::vector<SurfaceChange> changes = changesIn(wish);
    for (const SurfaceChange& change : changes)
        changed.add(change.surface);
    const bool isPosedAnew = wish.poseRevision != poseRevision_;
    if (isPosedAnew) shaders_.beginFrame(wish.time);
    if (!changes.empty()) shaders_.change(changes);
    worn_ = wish.shading;
    if (wish.lights != lights_ || isPosedAnew) {
        tracedBefore_ = tracedRays();
        evaluationsBefore_ = evaluations();
        shader_.emplace(*scene_, *wish.lights, shaders_);
        lights_ = wish.lights;
        poseRevision_ = wish.poseRevision;
    }
    return changed;
}

void LiveLane::letGo() {
    if (lights_ == nullptr) return;
    const ServiceBinding binding(scene_->index(), *lights_);
    std::optional<QuietMessages> quiet;
    if (!speaks_) quiet.emplace();
    shaders_.endPass();
}

std::vector<SurfaceChange> LiveLane::changesIn(const LiveWish& wish) const {
    std::vector<SurfaceChange> changes;
    for (std::size_t surface = 0; surface < worn_.size(); ++surface) {
        const StateBlock* wished = wish.shading[surface].get();
        const StateBlock* worn = worn_[surface].get();
        const bool same =
            wished == worn || (wished != nullptr && worn != nullptr && sameBits(*wished, *worn));
        if (!same) changes.push_back({surface, wished});
    }
    return changes;
}

void LiveLane::renderTile(LiveTile& tile, const LivePass& pass, const LiveShot& shot,
                          const std::function<bool()>& overtaken, LiveCanvas& canvas,
                          TilePaths& paths) {
    if (tile.least >= pass.target) return;
    const ServiceBinding binding(scene_->index(), *lights_);
    const PixelBox& box = tile.box;
    for (int y = box.top; y < box.bottom; y += pass.step) {
        if (overtaken()) return;
        for (int x = box.left; x < box.right; x += pass.step) {
            LivePixel& pixel = canvas.pixel(x, y);
            if (pixel.count >= pass.target) continue;
            if (pixel.count == 0) --tile.emptyPixels;
            tile.samples += static_cast<std::uint64_t>(pass.target - pixel.count);
            const int number = (y - box.top) * box.width() + x - box.left;
            refine({x, y, static_cast<std::size_t>(number)}, pass.target, shot, paths, pixel);
            tile.shaded.add(pixel.shaded);
            show(pixel, shot.backdrop, canvas.shown(x, y));
        }
    }
    if (pass.step == 1) tile.least = pass.target;
}

void LiveLane::refine(const Spot& spot, int target, const LiveShot& shot, TilePaths& paths,
                      LivePixel& pixel) {
    for (; pixel.count < target; ++pixel.count) {
        const auto sample = static_cast<std::size_t>(pixel.count);
        const Imath::V2d& place = shot.pattern[sample];
        const Ray ray = shot.view.rayThrough(spot.x + place.x, spot.y + place.y);
        shader_->follow(paths.path(spot.number, sample));
        pixel.sum.add(see(*shader_, decoder_, ray));
        pixel.shaded.add(shader_->takeShaded());
    }
}

std::uint64_t LiveLane::tracedRays() const {
    return tracedBefore_ + (shader_ ? shader_->viewingRays() + shader_->shadowRays() : 0);
}

std::uint64_t LiveLane::evaluations() const {
    return evaluationsBefore_ + (shader_ ? shader_->evaluations() : 0);
}

void LiveLane::show(const LivePixel& pixel, const Backdrop& backdrop, std::uint8_t* bytes) {
    float rgba[4];
    pixel.sum.develop(pixel.count, rgba);
    backdrop.layUnder(rgba);
    unsigned levels[4];
    displayLevels(rgba, true, 255, levels);
    for (int i = 0; i < 4; ++i)
        bytes[i] = static_cast<std::uint8_t>(levels[i]);
}

}  // namespace tavora::studio
