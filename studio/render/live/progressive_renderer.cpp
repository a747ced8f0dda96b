#include "studio/render/live/progressive_renderer.h"

#include <algorithm>
#include <atomic>
#include <fmt/format.h>
#include <numeric>
#include <utility>

#include "studio/render/sampling/sample_pattern.h"
#include "studio/render/threads/tiles.h"

namespace tavora::studio {
namespace {

using Clock = std::chrono::steady_clock;

/// A first picture that would take longer is coarse.
constexpr double kSoon = 0.05;
constexpr int kCoarsest = 8;
/// Before anything was measured.
constexpr double kGuessedSeconds = 2e-6;
constexpr std::chrono::milliseconds kPublishInterval{250};
/// Samples a pixel that all pixels get before any gets the rest.
constexpr int kFirstStage = 4;

double secondsSince(Clock::time_point start) {
    return std::chrono::duration<double>(Clock::now() - start).count();
}

CachedLights cachedLightsOf(const LightSet& lights) {
    const auto isArea = [](const ResolvedLight& light) { return !light.points.empty(); };
    return {lights.lights.size(), std::any_of(lights.lights.begin(), lights.lights.end(), isArea)};
}

}  // namespace

ProgressiveRenderer::ProgressiveRenderer(const RayScene& scene, std::filesystem::path module,
                                         const LiveOptions& options)
    : scene_(&scene),
      module_(std::move(module)),
      options_(options),
      pool_(static_cast<std::size_t>(std::max(options.threads, 0))) {
    options_.samples = std::max(options_.samples, 1);
    secondsPerSample_.fill(kGuessedSeconds);
}

void ProgressiveRenderer::render(const PreviewRequest& request, const PreviewWatch& watch) {
    try {
        follow(request, watch);
    } catch (...) {
        workers_.clear();
        framebuffer_.reset();
        cache_.reset();
        shown_ = {};
        throw;
    }
}

void ProgressiveRenderer::release() {
    pool_.forEachWorker([&](std::size_t worker) {
        if (worker < workers_.size() && workers_[worker]) workers_[worker]->release();
    });
}

void ProgressiveRenderer::follow(const PreviewRequest& request, const PreviewWatch& watch) {
    const Change change = adopt(request);
    if (renderFirst(change, watch)) refine(watch);
}

/// What the framebuffer shows of former requests and still holds, stays.
ProgressiveRenderer::Change ProgressiveRenderer::adopt(const PreviewRequest& request) {
    const bool newPose = request.poseRevision != shown_.poseRevision;
    const bool newView = !framebuffer_ || newPose || request.viewRevision != shown_.viewRevision;
    const bool newLights = newPose || request.lights != shown_.lights;
    const SurfaceSet changed = adoptOnWorkers(request);
    if (newView) adoptView(request);
    adoptCache(request, newView, newLights);
    if (newView || newLights) {
        framebuffer_->clear();
    } else {
        empty(changed);
    }
    shown_ = request;
    if (newView) return Change::View;
    return newLights ? Change::Lights : Change::Shading;
}

void ProgressiveRenderer::adoptView(const PreviewRequest& request) {
    view_.emplace(
        PreviewView{CameraRays(*request.camera, request.width, request.height, options_.samples),
                    hammersleyPattern(options_.samples), Background(options_.background)});
    const bool fits = framebuffer_ && framebuffer_->width() == request.width &&
                      framebuffer_->height() == request.height;
    if (fits) return;
    cache_.reset();
    framebuffer_.emplace(request.width, request.height);
}

/// Hits depend on the view alone, light on that and the lights.
void ProgressiveRenderer::adoptCache(const PreviewRequest& request, bool newView, bool newLights) {
    const CachedLights lights = cachedLightsOf(*request.lights);
    if (cache_ && cache_->lights() == lights) {
        if (newView) cache_->forgetHits();
        if (newLights) cache_->forgetLights();
        return;
    }
    cache_.reset();
    cache_.emplace(tilesOf({0, 0, request.width, request.height}), options_.samples, lights,
                   options_.memory);
}

SurfaceSet ProgressiveRenderer::adoptOnWorkers(const PreviewRequest& request) {
    workers_.resize(pool_.size());
    SurfaceSet changed;
    pool_.forEachWorker([&](std::size_t worker) {
        if (!workers_[worker])
            workers_[worker] = std::make_unique<LiveWorker>(*scene_, module_, worker == 0);
        const SurfaceSet here = workers_[worker]->adopt(request);
        if (worker == 0) changed = here;
    });
    return changed;
}

void ProgressiveRenderer::empty(SurfaceSet surfaces) {
    pool_.parallelFor(framebuffer_->tiles(), [&](std::size_t, std::size_t tile) {
        framebuffer_->empty(framebuffer_->tile(tile), surfaces);
    });
}

int ProgressiveRenderer::firstStep(Change change) const {
    const double seconds = static_cast<double>(framebuffer_->emptyPixels()) *
                           secondsPerSample_[static_cast<std::size_t>(change)] /
                           static_cast<double>(pool_.size());
    int step = 1;
    while (step < kCoarsest && seconds / (step * step) > kSoon)
        step *= 2;
    return step;
}

/// False when it did not come to a picture of all pixels.
bool ProgressiveRenderer::renderFirst(Change change, const PreviewWatch& watch) {
    const std::function<bool()>* stop = &watch.ending;
    for (int step = firstStep(change);; step /= 2) {
        const auto start = Clock::now();
        const std::uint64_t before = framebuffer_->samples();
        startPass();
        if (sweep({step, 1}, *stop, Clock::time_point::max()) != Swept::All) return false;
        measure(change, framebuffer_->samples() - before, secondsSince(start));
        publish(step, watch);
        if (step == 1) return true;
        stop = &watch.superseded;
    }
}

void ProgressiveRenderer::measure(Change change, std::uint64_t samples, double seconds) {
    constexpr std::uint64_t kEnough = 1000;  // of fewer the time says little
    if (samples < kEnough) return;
    secondsPerSample_[static_cast<std::size_t>(change)] =
        seconds * static_cast<double>(pool_.size()) / static_cast<double>(samples);
}

void ProgressiveRenderer::refine(const PreviewWatch& watch) {
    for (const int stage : {kFirstStage, options_.samples}) {
        const PreviewPass pass{1, std::min(stage, options_.samples)};
        startPass();
        for (Swept swept = Swept::Some; swept == Swept::Some;) {
            swept = sweep(pass, watch.superseded, Clock::now() + kPublishInterval);
            if (swept == Swept::Superseded) return;
            if (swept == Swept::Some) publish(1, watch);
        }
    }
    if (options_.samples > 1) publish(1, watch);
}

void ProgressiveRenderer::startPass() {
    remaining_.resize(framebuffer_->tiles());
    std::iota(remaining_.begin(), remaining_.end(), std::size_t{0});
}

/// Goes on with the tiles of the pass that are not done yet; each worker does at least one.
ProgressiveRenderer::Swept ProgressiveRenderer::sweep(const PreviewPass& pass,
                                                      const std::function<bool()>& superseded,
                                                      Clock::time_point until) {
    std::atomic<bool> isDropped{false};
    std::vector<std::uint8_t> isDone(remaining_.size());
    std::vector<std::uint8_t> isLate(pool_.size());
    pool_.parallelFor(remaining_.size(), [&](std::size_t worker, std::size_t index) {
        if (isDropped || isLate[worker] != 0) return;
        const std::size_t tile = remaining_[index];
        workers_[worker]->renderTile(framebuffer_->tile(tile), pass, *view_, superseded,
                                     *framebuffer_, cache_->open(tile));
        if (superseded()) isDropped = true;
        isDone[index] = 1;
        isLate[worker] = Clock::now() >= until ? 1 : 0;
    });
    if (isDropped) return Swept::Superseded;
    std::size_t index = 0;
    std::erase_if(remaining_, [&](std::size_t) { return isDone[index++] != 0; });
    return remaining_.empty() ? Swept::All : Swept::Some;
}

void ProgressiveRenderer::publish(int blockSize, const PreviewWatch& watch) {
    countUp();
    LiveFrame frame = framebuffer_->frame(blockSize);
    frame.revision = shown_.revision;
    frame.refined = static_cast<double>(framebuffer_->samples()) /
                    static_cast<double>(framebuffer_->pixels()) / options_.samples;
    watch.published(std::move(frame));
}

void ProgressiveRenderer::countUp() {
    stats_.cachedBytes = cache_->bytes();
    stats_.cachedFraction = cache_->cachedFraction();
    stats_.notice.clear();
    if (cache_->wasExceeded()) {
        stats_.notice = fmt::format(
            "{} MB hold the hits of {:.0f}% of the samples: the others are traced anew after each "
            "change; a smaller window or fewer samples would fit",
            options_.memory >> 20, 100 * stats_.cachedFraction);
    }
    stats_.tracedRays = stats_.evaluations = 0;
    for (const auto& worker : workers_) {
        stats_.tracedRays += worker->tracedRays();
        stats_.evaluations += worker->evaluations();
    }
}

}  // namespace tavora::studio
