#include "studio/render/live/live_worker.h"

#include <algorithm>

#include "studio/render/image/display_encoding.h"
#include "studio/services/messages.h"
#include "studio/services/service_binding.h"

namespace tavora::studio {

LiveWorker::LiveWorker(const RayScene& scene, const std::filesystem::path& module, bool speaks)
    : scene_(&scene), speaks_(speaks), shaders_(scene.index(), module) {
    shading_.resize(scene.index().scene().surfaces.size());
}

SurfaceSet LiveWorker::adopt(const PreviewRequest& request) {
    const ServiceBinding binding(scene_->index(), *request.lights);
    std::optional<QuietMessages> quiet;
    if (!speaks_) quiet.emplace();
    SurfaceSet changed;
    const std::vector<SurfaceChange> changes = changesIn(request);
    for (const SurfaceChange& change : changes)
        changed.add(change.surface);
    const bool isPosedAnew = request.poseRevision != poseRevision_;
    if (isPosedAnew) shaders_.beginFrame(request.time);
    if (!changes.empty()) shaders_.change(changes);
    shading_ = request.shading;
    if (request.lights != lights_ || isPosedAnew) {
        tracedBefore_ = tracedRays();
        evaluationsBefore_ = evaluations();
        sampler_.emplace(*scene_, *request.lights, shaders_);
        lights_ = request.lights;
        poseRevision_ = request.poseRevision;
    }
    return changed;
}

void LiveWorker::release() {
    if (lights_ == nullptr) return;
    const ServiceBinding binding(scene_->index(), *lights_);
    std::optional<QuietMessages> quiet;
    if (!speaks_) quiet.emplace();
    shaders_.endPass();
}

std::vector<SurfaceChange> LiveWorker::changesIn(const PreviewRequest& request) const {
    std::vector<SurfaceChange> changes;
    for (std::size_t surface = 0; surface < shading_.size(); ++surface) {
        const StateBlock* requested = request.shading[surface].get();
        const StateBlock* current = shading_[surface].get();
        const bool same = requested == current || (requested != nullptr && current != nullptr &&
                                                   sameBits(*requested, *current));
        if (!same) changes.push_back({surface, requested});
    }
    return changes;
}

void LiveWorker::renderTile(FramebufferTile& tile, const PreviewPass& pass, const PreviewView& view,
                            const std::function<bool()>& superseded, Framebuffer& framebuffer,
                            TileCache& cache) {
    if (tile.minSamples >= pass.target) return;
    const ServiceBinding binding(scene_->index(), *lights_);
    const PixelBox& box = tile.box;
    for (int y = box.top; y < box.bottom; y += pass.step) {
        for (int x = box.left; x < box.right; x += pass.step) {
            const FramebufferPixel& pixel = framebuffer.pixel(x, y);
            if (pixel.count >= pass.target) continue;
            const auto number =
                static_cast<std::size_t>((y - box.top) * box.width() + x - box.left);
            addSamples({x, y, pass.target - pixel.count}, number, view, pixel, cache);
            if (samples_.size() < CameraSampler::kBatch) continue;
            if (superseded()) return drop();
            render(tile, view, framebuffer);
        }
    }
    if (superseded()) return drop();
    render(tile, view, framebuffer);
    if (pass.step == 1) tile.minSamples = pass.target;
}

void LiveWorker::drop() {
    pixels_.clear();
    samples_.clear();
    paths_.clear();
}

/// Notes samples of the pixel of that number in its tile, for render().
void LiveWorker::addSamples(const Pixel& pixel, std::size_t number, const PreviewView& view,
                            const FramebufferPixel& state, TileCache& cache) {
    const Imath::V2d corner(pixel.x, pixel.y);
    for (int i = 0; i < pixel.count; ++i) {
        const auto sample = static_cast<std::size_t>(state.count + i);
        samples_.push_back({corner + view.pattern[sample], nullptr});
        paths_.push_back(cache.path(number, sample));
    }
    pixels_.push_back(pixel);
}

/// Takes the samples that were noted and adds them to their pixels.
void LiveWorker::render(FramebufferTile& tile, const PreviewView& view, Framebuffer& framebuffer) {
    shaded_.resize(std::max(shaded_.size(), samples_.size()));
    sampler_->sample(view.camera, samples_, paths_, shaded_);
    const ShadedSample* next = shaded_.data();
    for (const Pixel& one : pixels_) {
        FramebufferPixel& pixel = framebuffer.pixel(one.x, one.y);
        if (pixel.count == 0) --tile.emptyPixels;
        tile.samples += static_cast<std::uint64_t>(one.count);
        pixel.count += one.count;
        for (int i = 0; i < one.count; ++i, ++next) {
            pixel.sum.add(next->radiance);
            pixel.shaded.add(next->surfaces);
        }
        tile.shaded.add(pixel.shaded);
        display(pixel, view.background, framebuffer.displayed(one.x, one.y));
    }
    drop();
}

std::uint64_t LiveWorker::tracedRays() const {
    return tracedBefore_ + (sampler_ ? sampler_->cameraRays() + sampler_->shadowRays() : 0);
}

std::uint64_t LiveWorker::evaluations() const {
    return evaluationsBefore_ + (sampler_ ? sampler_->evaluations() : 0);
}

void LiveWorker::display(const FramebufferPixel& pixel, const Background& background,
                         std::uint8_t* bytes) {
    float rgba[4];
    pixel.sum.resolve(pixel.count, rgba);
    background.compositeUnder(rgba);
    unsigned encoded[4];
    encodeForDisplay(rgba, true, 255, encoded);
    for (int i = 0; i < 4; ++i)
        bytes[i] = static_cast<std::uint8_t>(encoded[i]);
}

}  // namespace tavora::studio
