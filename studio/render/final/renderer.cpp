#include "studio/render/final/renderer.h"

#include <algorithm>
#include <chrono>
#include <span>
#include <stdexcept>
#include <thread>
#include <utility>

#include "studio/render/final/render_worker.h"
#include "studio/render/image/accumulator.h"
#include "studio/render/sampling/adaptive_sampler.h"
#include "studio/render/sampling/sample_passes.h"
#include "studio/render/threads/thread_pool.h"
#include "studio/render/threads/tiles.h"
#include "studio/render/trace/ray_scene.h"
#include "studio/services/scene_index.h"

namespace tavora::studio {
namespace {

using Clock = std::chrono::steady_clock;

double secondsSince(Clock::time_point start) {
    return std::chrono::duration<double>(Clock::now() - start).count();
}

std::size_t workerCount(const RenderOptions& options, std::size_t tiles) {
    const std::size_t wanted = options.threads > 0 ? static_cast<std::size_t>(options.threads)
                                                   : std::thread::hardware_concurrency();
    return std::clamp<std::size_t>(wanted, 1, std::max<std::size_t>(tiles, 1));
}

PixelBox windowOf(const RenderOptions& options) {
    const PixelBox whole{0, 0, options.width, options.height};
    if (!options.crop) return whole;
    return {std::clamp(options.crop->left, 0, whole.right),
            std::clamp(options.crop->top, 0, whole.bottom),
            std::clamp(options.crop->right, 0, whole.right),
            std::clamp(options.crop->bottom, 0, whole.bottom)};
}

/// Throws std::invalid_argument for what no caller may ask.
void check(const Scene& scene, const SurfaceShaders& shading, const RenderOptions& options) {
    if (shading.size() != scene.surfaces.size()) {
        throw std::invalid_argument("every surface needs its shading");
    }
    if (options.samples < 1) throw std::invalid_argument("a pixel needs a sample");
}

Picture emptyPicture(const RenderOptions& options) {
    Picture picture;
    picture.width = options.width;
    picture.height = options.height;
    picture.window = windowOf(options);
    if (picture.window.width() <= 0 || picture.window.height() <= 0) {
        throw std::invalid_argument("the picture has no pixels");
    }
    picture.rgba.resize(static_cast<std::size_t>(picture.window.width()) *
                        static_cast<std::size_t>(picture.window.height()) * 4);
    return picture;
}

/// The workers of a render, and their threads.
class Workers {
  public:
    /// `shaders` has an entry for each worker; see RenderWorker.
    Workers(const RenderJob& job, std::span<std::shared_ptr<WorkerShaders>> shaders)
        : shaders_(shaders), workers_(shaders.size()), pool_(shaders.size()) {
        const auto make = [&](std::size_t worker) {
            workers_[worker] = std::make_unique<RenderWorker>(job, worker == 0, shaders_[worker],
                                                              shaders_.front());
        };
        // What the module has to say about the settings, its first copy says.
        pool_.forEachWorker([&](std::size_t worker) {
            if (worker == 0) make(worker);
        });
        pool_.forEachWorker([&](std::size_t worker) {
            if (worker != 0) make(worker);
        });
    }
    ~Workers() {
        for (const auto& own : shaders_) {
            if (own != nullptr) own->endPass();
        }
    }
    Workers(const Workers&) = delete;
    Workers& operator=(const Workers&) = delete;

    /// Runs `work(worker, tile)` for all tiles. `progress` takes the fraction of them that
    /// are done, 0..1.
    void forTiles(const std::vector<PixelBox>& tiles, const RenderWatch& watch,
                  const std::function<void(RenderWorker& worker, const PixelBox& tile)>& work,
                  const std::function<void(double fraction)>& progress) {
        const auto runOne = [&](std::size_t worker, std::size_t tile) {
            work(*workers_[worker], tiles[tile]);
        };
        const auto report = [&](std::size_t done) {
            if (watch.progress)
                progress(static_cast<double>(done) / static_cast<double>(tiles.size()));
            return watch.stop == nullptr || !*watch.stop;
        };
        if (!pool_.parallelFor(tiles.size(), runOne, report)) throw RenderStopped();
    }

    void addTo(RenderStats& stats) const {
        for (const auto& worker : workers_)
            worker->addTo(stats);
    }

  private:
    std::span<std::shared_ptr<WorkerShaders>> shaders_;
    std::vector<std::unique_ptr<RenderWorker>> workers_;
    ThreadPool pool_;
};

void renderEvenly(const RenderWatch& watch, Workers& workers, Picture& picture) {
    workers.forTiles(
        tilesOf(picture.window), watch,
        [&](RenderWorker& worker, const PixelBox& tile) {
            worker.renderTile(tile, watch.stop, picture);
        },
        watch.progress);
}

/// How much of the work is done, where only that of the first pass is known before. A later
/// pass is taken to need a part of the one before it until it begins.
class PassProgress {
  public:
    PassProgress(const std::vector<SampleRange>& passes, std::size_t pixels) {
        double needing = static_cast<double>(pixels);
        for (const SampleRange& pass : passes) {
            work_.push_back(needing * static_cast<double>(pass.size()));
            needing *= kUsualFraction;
        }
    }

    void begin(std::size_t pass, double work) {
        pass_ = pass;
        work_[pass] = work;
    }

    /// Never less than before.
    double at(double fraction) {
        double done = work_[pass_] * fraction;
        double all = 0;
        for (std::size_t i = 0; i < work_.size(); ++i) {
            all += work_[i];
            if (i < pass_) done += work_[i];
        }
        return last_ = std::max(last_, all > 0 ? done / all : 1);
    }

  private:
    static constexpr double kUsualFraction = 0.2;
    std::vector<double> work_;
    std::size_t pass_ = 0;
    double last_ = 0;
};

/// Decides for the `decision`th time which pixels need more samples, and leaves the tiles
/// with such, those with most first, so that no worker is left alone with a long one. Returns
/// how many pixels there are.
std::size_t decide(Workers& workers, const RenderWatch& watch, int decision,
                   AdaptiveSampler& adaptive, std::vector<PixelBox>& tiles) {
    std::vector<std::pair<std::size_t, PixelBox>> counted(tiles.size());
    workers.forTiles(
        tiles, watch,
        [&](RenderWorker&, const PixelBox& tile) {
            const auto number = static_cast<std::size_t>(&tile - tiles.data());
            counted[number] = {adaptive.decide(tile, decision), tile};
        },
        [](double) {});
    std::stable_sort(counted.begin(), counted.end(),
                     [](const auto& a, const auto& b) { return a.first > b.first; });
    std::size_t all = 0;
    tiles.clear();
    for (const auto& [pixels, tile] : counted) {
        if (pixels > 0) tiles.push_back(tile);
        all += pixels;
    }
    return all;
}

void resolve(Workers& workers, const RenderWatch& watch, const AdaptiveSampler& adaptive,
             Picture& picture) {
    workers.forTiles(
        tilesOf(picture.window), watch,
        [&](RenderWorker&, const PixelBox& tile) {
            for (int y = tile.top; y < tile.bottom; ++y) {
                for (int x = tile.left; x < tile.right; ++x)
                    adaptive.resolve(x, y, picture.pixel(x, y));
            }
        },
        [](double) {});
}

void renderAdaptively(const RenderOptions& options, const RenderWatch& watch, Workers& workers,
                      Picture& picture) {
    AdaptiveSampler adaptive(picture.window, {0, 0, options.width, options.height});
    const std::vector<SampleRange> passes = adaptivePasses(options);
    std::vector<PixelBox> tiles = tilesOf(adaptive.area());
    std::size_t needing = picture.rgba.size() / 4;
    PassProgress progress(passes, needing);
    int decisions = 0;
    for (std::size_t pass = 0; pass < passes.size(); ++pass) {
        workers.forTiles(
            tiles, watch,
            [&](RenderWorker& worker, const PixelBox& tile) {
                worker.refineTile(tile, passes[pass], watch.stop, adaptive);
            },
            [&](double fraction) { watch.progress(progress.at(fraction)); });
        if (pass + 1 == passes.size()) break;
        if (passes[pass].last >= static_cast<std::size_t>(options.samples))
            needing = decide(workers, watch, ++decisions, adaptive, tiles);
        const auto samples = static_cast<double>(passes[pass + 1].size());
        progress.begin(pass + 1, static_cast<double>(needing) * samples);
    }
    resolve(workers, watch, adaptive, picture);
}

void compositeOver(const Background& background, Picture& picture) {
    for (std::size_t i = 0; i < picture.rgba.size(); i += 4)
        background.compositeUnder(&picture.rgba[i]);
}

}  // namespace

struct Renderer::Parts {
    Parts(const Scene& scene, SceneUse use_) : index(scene), use(use_) { build(); }

    void build() {
        const auto start = Clock::now();
        rays.reset();
        rays = std::make_unique<RayScene>(index, RayScene::kRoomForCopies, use);
        buildSeconds = secondsSince(start);
    }

    /// The shaders of a render's workers. Those of an earlier one serve again where they were
    /// made for the same.
    std::span<std::shared_ptr<WorkerShaders>> shadersFor(std::size_t workers,
                                                         const SurfaceShaders& shading,
                                                         const std::filesystem::path& module) {
        if (shaders.size() != workers || madeFor != shading || madeOf != module) shaders.clear();
        shaders.resize(workers);
        madeFor = shading;
        madeOf = module;
        return shaders;
    }

    SceneIndex index;
    SceneUse use;
    std::unique_ptr<RayScene> rays;
    double buildSeconds = 0;
    std::uint64_t refits = 0;  ///< of trees that are gone
    std::uint64_t rebuilds = 0;
    std::vector<std::shared_ptr<WorkerShaders>> shaders;  ///< by worker
    SurfaceShaders madeFor;
    std::filesystem::path madeOf;
};

Renderer::Renderer(const Scene& scene, SceneUse use)
    : parts_(std::make_unique<Parts>(scene, use)) {}

void Renderer::update() {
    Parts& parts = *parts_;
    const auto start = Clock::now();
    parts.index.refresh();
    if (parts.rays != nullptr && parts.rays->update()) {
        parts.buildSeconds = secondsSince(start);
        return;
    }
    if (parts.rays != nullptr) {
        parts.refits += parts.rays->refits();
        parts.rebuilds += parts.rays->rebuilds() + parts.index.meshes().size();
    }
    parts.build();
}

Renderer::~Renderer() = default;

Picture Renderer::render(const Camera& camera, const LightSet& lights,
                         const SurfaceShaders& shading, const std::filesystem::path& module,
                         const RenderOptions& options, const RenderWatch& watch,
                         RenderStats* stats) {
    const auto start = Clock::now();
    check(parts_->index.scene(), shading, options);
    Picture picture = emptyPicture(options);
    const RenderJob job{*parts_->rays,
                        lights,
                        shading,
                        module,
                        options,
                        CameraRays(camera, options.width, options.height,
                                   std::max(options.samples, options.maxSamples)),
                        patternsOf(options)};
    const std::size_t count = workerCount(options, tilesOf(picture.window).size());
    Workers workers(job, parts_->shadersFor(count, shading, module));
    if (isAdaptive(options)) {
        renderAdaptively(options, watch, workers, picture);
    } else {
        renderEvenly(watch, workers, picture);
    }
    compositeOver(Background(options.background), picture);
    if (stats != nullptr) {
        *stats = {};
        workers.addTo(*stats);
        stats->pixels = picture.rgba.size() / 4;
        stats->triangles = parts_->rays->triangles();
        stats->buildSeconds = parts_->buildSeconds;
        stats->refits = parts_->refits + parts_->rays->refits();
        stats->rebuilds = parts_->rebuilds + parts_->rays->rebuilds();
        stats->renderSeconds = secondsSince(start);
    }
    return picture;
}

}  // namespace tavora::studio
