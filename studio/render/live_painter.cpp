#include "studio/render/live_painter.h"

#include <algorithm>
#include <fmt/format.h>
#include <thread>
#include <utility>

#include "studio/render/sample_pattern.h"
#include "studio/render/tiles.h"

namespace tavora::studio {
namespace {

using Clock = std::chrono::steady_clock;

/// A first picture that would take longer is coarse.
constexpr double kSoon = 0.06;
constexpr int kCoarsest = 8;
/// Before anything was measured.
constexpr double kGuessedSeconds = 2e-6;
constexpr std::chrono::milliseconds kPublishInterval{250};
/// Samples a pixel that all pixels get before any gets the rest.
constexpr int kFirstStage = 4;

double secondsSince(Clock::time_point start) {
    return std::chrono::duration<double>(Clock::now() - start).count();
}

std::size_t laneCount(const LiveOptions& options) {
    const std::size_t wanted = options.threads > 0 ? static_cast<std::size_t>(options.threads)
                                                   : std::thread::hardware_concurrency();
    return std::max<std::size_t>(wanted, 1);
}

KeptLights lightsToKeep(const LightSet& rig) {
    const auto hasSize = [](const ResolvedLight& light) { return !light.points.empty(); };
    return {rig.lights.size(), std::any_of(rig.lights.begin(), rig.lights.end(), hasSize)};
}

}  // namespace

LivePainter::LivePainter(const RayScene& scene, std::filesystem::path module,
                         const LiveOptions& options)
    : scene_(&scene), module_(std::move(module)), options_(options), team_(laneCount(options)) {
    options_.samples = std::max(options_.samples, 1);
    secondsASample_.fill(kGuessedSeconds);
}

void LivePainter::paint(const LiveWish& wish, const LiveWatch& watch) {
    try {
        follow(wish, watch);
    } catch (...) {
        lanes_.clear();
        canvas_.reset();
        paths_.reset();
        wish_ = {};
        throw;
    }
}

void LivePainter::letGo() {
    team_.run([&](std::size_t lane) {
        if (lane < lanes_.size() && lanes_[lane]) lanes_[lane]->letGo();
    });
}

void LivePainter::follow(const LiveWish& wish, const LiveWatch& watch) {
    const Change change = adopt(wish);
    if (paintFirst(change, watch)) refine(watch);
}

/// What the canvas shows of former wishes and still holds, stays.
LivePainter::Change LivePainter::adopt(const LiveWish& wish) {
    const bool newPose = wish.poseRevision != wish_.poseRevision;
    const bool newView = !canvas_ || newPose || wish.viewRevision != wish_.viewRevision;
    const bool newLights = newPose || wish.lights != wish_.lights;
    const SurfaceSet changed = adoptOnLanes(wish);
    if (newView) adoptView(wish);
    adoptPaths(wish, newView, newLights);
    if (newView || newLights) {
        canvas_->clear();
    } else {
        empty(changed);
    }
    wish_ = wish;
    if (newView) return Change::View;
    return newLights ? Change::Lights : Change::Shading;
}

void LivePainter::adoptView(const LiveWish& wish) {
    shot_.emplace(LiveShot{View(*wish.camera, wish.width, wish.height, options_.samples),
                           samplePattern(options_.samples), Backdrop(options_.background)});
    const bool fits = canvas_ && canvas_->width() == wish.width && canvas_->height() == wish.height;
    if (fits) return;
    paths_.reset();
    canvas_.emplace(wish.width, wish.height);
}

/// Hits depend on the view alone, light on that and the lights.
void LivePainter::adoptPaths(const LiveWish& wish, bool newView, bool newLights) {
    const KeptLights lights = lightsToKeep(*wish.lights);
    if (paths_ && paths_->lights() == lights) {
        if (newView) paths_->forgetHits();
        if (newLights) paths_->forgetLights();
        return;
    }
    paths_.reset();
    paths_.emplace(tilesOf({0, 0, wish.width, wish.height}), options_.samples, lights,
                   options_.memory);
}

SurfaceSet LivePainter::adoptOnLanes(const LiveWish& wish) {
    lanes_.resize(team_.size());
    SurfaceSet changed;
    team_.run([&](std::size_t lane) {
        if (!lanes_[lane]) lanes_[lane] = std::make_unique<LiveLane>(*scene_, module_, lane == 0);
        const SurfaceSet here = lanes_[lane]->adopt(wish);
        if (lane == 0) changed = here;
    });
    return changed;
}

void LivePainter::empty(SurfaceSet surfaces) {
    nextTile_ = 0;
    team_.run([&](std::size_t) {
        for (std::size_t tile; (tile = nextTile_.fetch_add(1)) < canvas_->tiles();)
            canvas_->empty(canvas_->tile(tile), surfaces);
    });
}

int LivePainter::firstStep(Change change) const {
    const double seconds = static_cast<double>(canvas_->emptyPixels()) *
                           secondsASample_[static_cast<std::size_t>(change)] /
                           static_cast<double>(team_.size());
    int step = 1;
    while (step < kCoarsest && seconds / (step * step) > kSoon)
        step *= 2;
    return step;
}

/// False when it did not come to a picture of all pixels.
bool LivePainter::paintFirst(Change change, const LiveWatch& watch) {
    const std::function<bool()>* stop = &watch.ending;
    for (int step = firstStep(change);; step /= 2) {
        const auto start = Clock::now();
        const std::uint64_t before = canvas_->samples();
        nextTile_ = 0;
        if (sweep({step, 1}, *stop, Clock::time_point::max()) != Swept::All) return false;
        measure(change, canvas_->samples() - before, secondsSince(start));
        publish(step, watch);
        if (step == 1) return true;
        stop = &watch.overtaken;
    }
}

void LivePainter::measure(Change change, std::uint64_t samples, double seconds) {
    constexpr std::uint64_t kEnough = 1000;  // of fewer the time says little
    if (samples < kEnough) return;
    secondsASample_[static_cast<std::size_t>(change)] =
        seconds * static_cast<double>(team_.size()) / static_cast<double>(samples);
}

void LivePainter::refine(const LiveWatch& watch) {
    for (const int stage : {kFirstStage, options_.samples}) {
        const LivePass pass{1, std::min(stage, options_.samples)};
        nextTile_ = 0;
        for (Swept swept = Swept::Some; swept == Swept::Some;) {
            swept = sweep(pass, watch.overtaken, Clock::now() + kPublishInterval);
            if (swept == Swept::Overtaken) return;
            if (swept == Swept::Some) publish(1, watch);
        }
    }
    if (options_.samples > 1) publish(1, watch);
}

/// Goes on with the tiles that no lane has taken yet; each lane takes at least
/// one.
LivePainter::Swept LivePainter::sweep(const LivePass& pass, const std::function<bool()>& overtaken,
                                      Clock::time_point until) {
    std::atomic<bool> dropped{false};
    team_.run([&](std::size_t lane) {
        do {
            const std::size_t tile = nextTile_.fetch_add(1);
            if (tile >= canvas_->tiles()) return;
            lanes_[lane]->renderTile(canvas_->tile(tile), pass, *shot_, overtaken, *canvas_,
                                     paths_->open(tile));
            if (overtaken()) dropped = true;
        } while (!dropped && Clock::now() < until);
    });
    if (dropped) return Swept::Overtaken;
    return nextTile_ >= canvas_->tiles() ? Swept::All : Swept::Some;
}

void LivePainter::publish(int coarseness, const LiveWatch& watch) {
    countUp();
    LiveFrame frame = canvas_->frame(coarseness);
    frame.revision = wish_.revision;
    frame.refined = static_cast<double>(canvas_->samples()) /
                    static_cast<double>(canvas_->pixels()) / options_.samples;
    watch.published(std::move(frame));
}

void LivePainter::countUp() {
    stats_.keptBytes = paths_->bytes();
    stats_.keptShare = paths_->keptShare();
    stats_.notice.clear();
    if (paths_->wasExceeded()) {
        stats_.notice = fmt::format(
            "{} MB hold the hits of {:.0f}% of the samples: the others are traced anew after each "
            "change; a smaller window or fewer samples would fit",
            options_.memory >> 20, 100 * stats_.keptShare);
    }
    stats_.tracedRays = stats_.evaluations = 0;
    for (const auto& lane : lanes_) {
        stats_.tracedRays += lane->tracedRays();
        stats_.evaluations += lane->evaluations();
    }
}

}  // namespace tavora::studio
