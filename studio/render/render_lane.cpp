#include "studio/render/render_lane.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "studio/services/messages.h"
#include "studio/services/service_binding.h"

namespace tavora::studio {
namespace {

/// So many samples are looked at together, unless one pixel has more: enough to
/// share rays well, few enough to stop soon and to stay in the cache.
constexpr std::size_t kTogether = 4096;

/// Embree follows 32 rays at once, best those of pixels close to each other.
constexpr int kBlockWidth = 8;
constexpr int kBlockHeight = 4;

/// Calls `visit(x, y)` for the pixels of a tile, block by block.
template <typename Visit>
void inBlocks(const PixelBox& tile, Visit visit) {
    for (int top = tile.top; top < tile.bottom; top += kBlockHeight) {
        for (int left = tile.left; left < tile.right; left += kBlockWidth) {
            const int right = std::min(left + kBlockWidth, tile.right);
            const int bottom = std::min(top + kBlockHeight, tile.bottom);
            for (int y = top; y < bottom; ++y) {
                for (int x = left; x < right; ++x)
                    visit(x, y);
            }
        }
    }
}

}  // namespace

RenderLane::RenderLane(const RenderJob& job, std::shared_ptr<const LaneShaders> shaders)
    : job_(&job),
      shaders_(std::move(shaders)),
      sampler_(job.scene, job.lights, *shaders_, job.view) {}

void RenderLane::renderTile(const PixelBox& tile, const std::atomic<bool>* stop, Picture& picture) {
    findAll(tile);
    notesLights_ = false;
    const SampleRun all{0, job_->samples()};
    look(pixels_, job_->options.part.value_or(all), stop,
         [&](const Pixel& pixel, std::span<const ViewSample> samples) {
             PixelSum sum;
             for (const ViewSample& sample : samples)
                 sum.add(sample.sight);
             sum.develop(static_cast<int>(samples.size()), picture.pixel(pixel.x, pixel.y));
         });
}

void RenderLane::refineTile(const PixelBox& tile, const SampleRun& run,
                            const std::atomic<bool>* stop, Refinement& refinement) {
    notesLights_ = run.first == 0;
    if (notesLights_) {
        refinement.begin(tile);
        findAll(tile);
    } else {
        findWanting(tile, refinement);
    }
    const bool searches = searchesBordersAfter(run);
    borders_.clear();
    look(pixels_, run, stop, [&](const Pixel& pixel, std::span<const ViewSample> samples) {
        const std::span<const Imath::V2d> places = job_->placesIn(pixel.x, pixel.y);
        refinement.add(pixel.x, pixel.y, places.subspan(run.first, run.size()), samples);
        if (!searches) return;
        borders_.add({pixel.x, pixel.y, &pixel.known}, places.first(run.last),
                     refinement.at(pixel.x, pixel.y).first, samples);
    });
    const ServiceBinding binding(job_->scene.index(), job_->lights);
    primaryRays_ += borders_.search(sampler_, refinement);
}

/// After the first round that not all pixels get, if what came before is kept. A
/// border is as straight among the samples as in the picture where a filter does not
/// spread them.
bool RenderLane::searchesBordersAfter(const SampleRun& run) const {
    const RenderOptions& options = job_->options;
    return options.filter == PixelFilter::Box && run.last < job_->samples() &&
           run.first == static_cast<std::size_t>(options.samples) && run.first <= PixelState::kKept;
}

void RenderLane::findAll(const PixelBox& tile) {
    pixels_.clear();
    inBlocks(tile, [&](int x, int y) { pixels_.push_back({x, y, {}}); });
}

void RenderLane::findWanting(const PixelBox& tile, const Refinement& refinement) {
    pixels_.clear();
    inBlocks(tile, [&](int x, int y) {
        if (refinement.at(x, y).wanting) pixels_.push_back({x, y, refinement.shadowsAbout(x, y)});
    });
}

void RenderLane::look(std::span<const Pixel> pixels, const SampleRun& run,
                      const std::atomic<bool>* stop, const Take& take) {
    const ServiceBinding binding(job_->scene.index(), job_->lights);
    const std::size_t together = std::max<std::size_t>(kTogether / run.size(), 1);
    for (std::size_t first = 0; first < pixels.size(); first += together) {
        if (stop != nullptr && *stop) throw RenderStopped();
        lookAtOnce(pixels.subspan(first, std::min(together, pixels.size() - first)), run, take);
    }
}

void RenderLane::lookAtOnce(std::span<const Pixel> pixels, const SampleRun& run, const Take& take) {
    places_.clear();
    for (const Pixel& pixel : pixels) {
        const Imath::V2d corner(pixel.x, pixel.y);
        const std::span<const Imath::V2d> places = job_->placesIn(pixel.x, pixel.y);
        const KnownShadows* known = pixel.known.empty() ? nullptr : &pixel.known;
        for (const Imath::V2d& place : places.subspan(run.first, run.size()))
            places_.push_back({corner + place, known});
    }
    samples_.resize(std::max(samples_.size(), places_.size()));
    const std::span<ViewSample> samples(samples_.data(), places_.size());
    sampler_.look(places_, samples, notesLights_);
    primaryRays_ += places_.size();
    for (std::size_t i = 0; i < pixels.size(); ++i)
        take(pixels[i], samples.subspan(i * run.size(), run.size()));
}

void RenderLane::addTo(RenderStats& stats) const {
    stats.primaryRays += primaryRays_;
    stats.shadowRays += sampler_.shadowRays();
    stats.evaluations += sampler_.evaluations();
}

std::unique_ptr<RenderLane> makeLane(const RenderJob& job, std::shared_ptr<LaneShaders>& shaders,
                                     const RenderLane* first) {
    const ServiceBinding binding(job.scene.index(), job.lights);
    std::optional<QuietMessages> quiet;
    if (first != nullptr) quiet.emplace();
    if (shaders != nullptr) {
        shaders->beginFrame(job.options.time);
    } else if (first == nullptr || job.options.moduleEachThread) {
        shaders = std::make_shared<LaneShaders>(job.scene.index(), job.shading, job.module,
                                                job.options.time);
    }
    return std::make_unique<RenderLane>(job, shaders != nullptr ? shaders : first->shaders());
}

}  // namespace tavora::studio
