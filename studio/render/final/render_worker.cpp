#include "studio/render/final/render_worker.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "studio/render/image/accumulator.h"
#include "studio/services/messages.h"
#include "studio/services/service_binding.h"

namespace tavora::studio {
namespace {

/// So many samples are taken together, unless one pixel has more: enough to share rays well,
/// few enough to stop soon and to stay in the cache.
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

std::shared_ptr<const WorkerShaders> shadersFor(const RenderJob& job, bool isFirst,
                                                std::shared_ptr<WorkerShaders>& own,
                                                const std::shared_ptr<WorkerShaders>& shared) {
    const ServiceBinding binding(job.scene.index(), job.lights);
    std::optional<QuietMessages> quiet;
    if (!isFirst) quiet.emplace();
    if (own != nullptr) {
        own->beginFrame(job.options.time);
    } else if (isFirst || job.options.modulePerWorker) {
        own = std::make_shared<WorkerShaders>(job.scene.index(), job.shading, job.module,
                                              job.options.time);
    }
    return own != nullptr ? own : shared;
}

}  // namespace

RenderWorker::RenderWorker(const RenderJob& job, bool isFirst,
                           std::shared_ptr<WorkerShaders>& shaders,
                           const std::shared_ptr<WorkerShaders>& shared)
    : job_(&job),
      shaders_(shadersFor(job, isFirst, shaders, shared)),
      sampler_(job.scene, job.lights, *shaders_) {}

void RenderWorker::renderTile(const PixelBox& tile, const std::atomic<bool>* stop,
                              Picture& picture) {
    findAll(tile);
    const SampleRange all{0, job_->samples()};
    sample(job_->options.part.value_or(all), stop,
           [&](const Pixel& pixel, std::span<const ShadedSample> shaded) {
               Accumulator sum;
               for (const ShadedSample& one : shaded)
                   sum.add(one.radiance);
               sum.resolve(static_cast<int>(shaded.size()), picture.pixel(pixel.x, pixel.y));
           });
}

void RenderWorker::refineTile(const PixelBox& tile, const SampleRange& range,
                              const std::atomic<bool>* stop, AdaptiveSampler& adaptive) {
    if (range.first == 0) {
        adaptive.begin(tile);
        findAll(tile);
    } else {
        findNeedy(tile, adaptive);
    }
    const bool searches = searchesEdgesAfter(range);
    edges_.clear();
    sample(range, stop, [&](const Pixel& pixel, std::span<const ShadedSample> shaded) {
        const std::span<const Imath::V2d> positions = job_->positionsIn(pixel.x, pixel.y);
        adaptive.add(pixel.x, pixel.y, positions.subspan(range.first, range.size()), shaded);
        if (!searches) return;
        edges_.add({pixel.x, pixel.y, &pixel.neighbours}, positions.first(range.last),
                   adaptive.at(pixel.x, pixel.y).first, shaded);
    });
    const ServiceBinding binding(job_->scene.index(), job_->lights);
    primaryRays_ += edges_.search(job_->camera, sampler_, adaptive);
}

/// After the first pass that not all pixels get, if what came before is kept. An edge is as
/// straight among the samples as in the picture where a filter does not spread them.
bool RenderWorker::searchesEdgesAfter(const SampleRange& range) const {
    const RenderOptions& options = job_->options;
    return options.filter == PixelFilter::Box && range.last < job_->samples() &&
           range.first == static_cast<std::size_t>(options.samples) &&
           range.first <= PixelState::kKept;
}

void RenderWorker::findAll(const PixelBox& tile) {
    pixels_.clear();
    inBlocks(tile, [&](int x, int y) { pixels_.push_back({x, y, {}}); });
}

void RenderWorker::findNeedy(const PixelBox& tile, const AdaptiveSampler& adaptive) {
    pixels_.clear();
    inBlocks(tile, [&](int x, int y) {
        if (adaptive.at(x, y).needsSamples)
            pixels_.push_back({x, y, adaptive.visibilityAround(x, y)});
    });
}

/// Calls `take` for each pixel with its samples of `range`.
template <class Take>
void RenderWorker::sample(const SampleRange& range, const std::atomic<bool>* stop,
                          const Take& take) {
    const ServiceBinding binding(job_->scene.index(), job_->lights);
    const std::size_t together = std::max<std::size_t>(kTogether / range.size(), 1);
    for (std::size_t first = 0; first < pixels_.size(); first += together) {
        if (stop != nullptr && *stop) throw RenderStopped();
        const std::size_t count = std::min(together, pixels_.size() - first);
        const auto pixels = std::span<const Pixel>(pixels_).subspan(first, count);
        sampleTogether(pixels, range);
        for (std::size_t i = 0; i < count; ++i)
            take(pixels[i], std::span(&shaded_[i * range.size()], range.size()));
    }
}

void RenderWorker::sampleTogether(std::span<const Pixel> pixels, const SampleRange& range) {
    samples_.clear();
    for (const Pixel& pixel : pixels) {
        const Imath::V2d corner(pixel.x, pixel.y);
        const auto positions = job_->positionsIn(pixel.x, pixel.y);
        const NeighbourVisibility* neighbours =
            pixel.neighbours.isEmpty() ? nullptr : &pixel.neighbours;
        for (const Imath::V2d& position : positions.subspan(range.first, range.size()))
            samples_.push_back({corner + position, neighbours});
    }
    shaded_.resize(std::max(shaded_.size(), samples_.size()));
    sampler_.sample(job_->camera, samples_, {}, shaded_);
    primaryRays_ += samples_.size();
}

void RenderWorker::addTo(RenderStats& stats) const {
    stats.primaryRays += primaryRays_;
    stats.shadowRays += sampler_.shadowRays();
    stats.evaluations += sampler_.evaluations();
}

}  // namespace tavora::studio
