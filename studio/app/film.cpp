#include "studio/app/film.h"

#include <algorithm>
#include <utility>

#include "studio/render/image/exposure.h"

namespace tavora::studio {

double FilmRenderer::secondsOf(std::optional<int> frame) const {
    const AnimationRequest& animation = request_.animation;
    return frame ? *frame / animation.fps : animation.seconds.value_or(0);
}

RenderOptions FilmRenderer::options(std::optional<int> frame) const {
    RenderOptions options;
    options.width = area_.width;
    options.height = area_.height;
    options.crop = area_.crop;
    options.samples = request_.samples;
    options.maxSamples = request_.maxSamples;
    options.filter = request_.filter;
    options.threads = request_.threads;
    options.background = request_.background;
    options.time = {frame.value_or(0), secondsOf(frame)};
    return options;
}

void FilmRenderer::pose(double seconds) {
    if (scene_.plays() && posedAt_ != seconds) {
        posedAt_.reset();  // if posing fails, it must be done again the next time
        scene_.pose(seconds);
        posedAt_ = seconds;
        if (renderer_) renderer_->update();
        isBuilt_ = false;
    }
    const bool isFilm = scene_.plays() && (request_.frames.size() > 1 || request_.shutter > 0);
    if (!renderer_) renderer_.emplace(scene_.scene(), isFilm ? SceneUse::Film : SceneUse::Still);
}

Picture FilmRenderer::renderNow(const RenderOptions& options, const RenderWatch& watch) {
    RenderStats stats;
    Picture picture = renderer_->render(scene_.camera(), scene_.lights(request_.lighting),
                                        shading_.surfaces, shading_.module, options, watch, &stats);
    stats_.renderSeconds += stats.renderSeconds;
    stats_.primaryRays += stats.primaryRays;
    stats_.shadowRays += stats.shadowRays;
    stats_.evaluations += stats.evaluations;
    if (!std::exchange(isBuilt_, true)) stats_.buildSeconds += stats.buildSeconds;
    stats_.refits = stats.refits;
    stats_.rebuilds = stats.rebuilds;
    stats_.pixels = stats.pixels;
    stats_.triangles = stats.triangles;
    return picture;
}

/// Renders all pixels once per sample, each time at another time in the shutter interval.
Picture FilmRenderer::renderMotionBlur(const RenderOptions& whole, const RenderWatch& watch) {
    RenderOptions options = whole;
    options.samples = std::max(whole.samples, whole.maxSamples);
    options.maxSamples = 0;
    options.background.reset();
    const std::vector<double> times = shutterTimes(options.samples);
    const double openSeconds = request_.shutter / request_.animation.fps;
    Exposure exposure;
    for (std::size_t i = 0; i < times.size(); ++i) {
        const auto inAll = [&](double done) {
            return (static_cast<double>(i) + done) / static_cast<double>(times.size());
        };
        pose(whole.time.seconds + (times[i] - 0.5) * openSeconds);
        options.part = SampleRange{i, i + 1};
        exposure.add(
            renderNow(options, {[&](double done) { watch.progress(inAll(done)); }, watch.stop}));
    }
    return exposure.resolve(whole.background);
}

Picture FilmRenderer::render(std::optional<int> frame, const RenderWatch& watch) {
    stats_ = {};
    const RenderOptions options = this->options(frame);
    if (request_.shutter > 0 && scene_.plays()) return renderMotionBlur(options, watch);
    pose(options.time.seconds);
    return renderNow(options, watch);
}

}  // namespace tavora::studio
