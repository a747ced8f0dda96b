#include "studio/render/renderer.h"

#include <algorithm>
#include <chrono>
#include <stdexcept>
#include <thread>

#include "studio/render/film.h"
#include "studio/render/lane_shaders.h"
#include "studio/render/lanes.h"
#include "studio/render/ray_scene.h"
#include "studio/render/sample_pattern.h"
#include "studio/render/tiles.h"
#include "studio/render/view.h"
#include "studio/render/view_samples.h"
#include "studio/services/messages.h"
#include "studio/services/scene_index.h"
#include "studio/services/service_binding.h"

namespace tavora::studio {
namespace {

using Clock = std::chrono::steady_clock;

double secondsSince(Clock::time_point start) {
    return std::chrono::duration<double>(Clock::now() - start).count();
}

/// What all lanes read.
struct Job {
    const RayScene& scene;
    const LightRig& lights;
    const std::vector<SurfaceShading>& shading;
    const std::filesystem::path& module;
    const RenderOptions& options;
    View view;
    std::vector<Imath::V2d> pattern;
    std::vector<PixelBox> tiles;
};

/// What one render thread works with.
class Lane {
  public:
    explicit Lane(const Job& job)
        : job_(&job),
          shaders_(job.scene.index(), job.shading, job.module),
          sampler_(job.scene, job.lights, shaders_, job.view, job.options.background),
          places_(job.pattern.size() * static_cast<std::size_t>(kTileWidth)),
          samples_(places_.size()) {}

    /// False when `stop` was set meanwhile; the tile is then incomplete.
    void renderTile(const PixelBox& tile, const std::atomic<bool>* stop, Picture& picture) {
        const ServiceBinding binding(job_->scene.index(), job_->lights);
        for (int y = tile.top; y < tile.bottom; ++y) {
            if (stop != nullptr && *stop) throw RenderStopped();
            renderRow(tile.left, tile.right, y, picture);
        }
    }

    void addTo(RenderStats& stats) const {
        stats.primaryRays += primaryRays_;
        stats.shadowRays += sampler_.shadowRays();
        stats.evaluations += sampler_.evaluations();
    }

  private:
    void renderRow(int left, int right, int y, Picture& picture) {
        std::size_t count = 0;
        for (int x = left; x < right; ++x) {
            for (const Imath::V2d& place : job_->pattern)
                places_[count++] = {x + place.x, y + place.y};
        }
        sampler_.look({places_.data(), count}, {samples_.data(), count});
        primaryRays_ += count;
        const ViewSample* sample = samples_.data();
        for (int x = left; x < right; ++x) {
            for (std::size_t i = 0; i < job_->pattern.size(); ++i)
                film_.add((sample++)->sight);
            film_.develop(picture.pixel(x, y));
        }
    }

    const Job* job_;
    LaneShaders shaders_;
    ViewSampler sampler_;
    std::vector<Imath::V2d> places_;  ///< of a row of a tile
    std::vector<ViewSample> samples_;
    PixelFilm film_;
    std::uint64_t primaryRays_ = 0;
};

/// Lanes for all threads. What modules have to say about the settings, the
/// first copy says.
std::vector<std::unique_ptr<Lane>> makeLanes(const Job& job, std::size_t count) {
    const ServiceBinding binding(job.scene.index(), job.lights);
    std::vector<std::unique_ptr<Lane>> lanes;
    lanes.push_back(std::make_unique<Lane>(job));
    const QuietMessages quiet;
    while (lanes.size() < count)
        lanes.push_back(std::make_unique<Lane>(job));
    return lanes;
}

std::size_t laneCount(const RenderOptions& options, std::size_t tiles) {
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
void check(const Scene& scene, const std::vector<SurfaceShading>& shading,
           const RenderOptions& options) {
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

void renderTiles(const Job& job, std::vector<std::unique_ptr<Lane>>& lanes,
                 const RenderWatch& watch, Picture& picture) {
    const auto renderOne = [&](std::size_t lane, std::size_t tile) {
        lanes[lane]->renderTile(job.tiles[tile], watch.stop, picture);
    };
    const auto report = [&](std::size_t done) {
        if (watch.progress) {
            watch.progress(static_cast<double>(done) / static_cast<double>(job.tiles.size()));
        }
        return watch.stop == nullptr || !*watch.stop;
    };
    if (!runLanes(lanes.size(), job.tiles.size(), renderOne, report)) throw RenderStopped();
}

}  // namespace

struct Renderer::Parts {
    explicit Parts(const Scene& scene) : index(scene), rays(index) {}

    SceneIndex index;
    RayScene rays;
    double buildSeconds = 0;
};

Renderer::Renderer(const Scene& scene) {
    const auto start = Clock::now();
    parts_ = std::make_unique<Parts>(scene);
    parts_->buildSeconds = secondsSince(start);
}

Renderer::~Renderer() = default;

Picture Renderer::render(const Camera& camera, const LightRig& lights,
                         const std::vector<SurfaceShading>& shading,
                         const std::filesystem::path& module, const RenderOptions& options,
                         const RenderWatch& watch, RenderStats* stats) {
    const auto start = Clock::now();
    check(parts_->index.scene(), shading, options);
    Picture picture = emptyPicture(options);
    const Job job{parts_->rays,
                  lights,
                  shading,
                  module,
                  options,
                  View(camera, options.width, options.height, options.samples),
                  samplePattern(options.samples),
                  tilesOf(picture.window)};
    auto lanes = makeLanes(job, laneCount(options, job.tiles.size()));
    renderTiles(job, lanes, watch, picture);
    if (stats != nullptr) {
        *stats = {};
        for (const auto& lane : lanes)
            lane->addTo(*stats);
        stats->triangles = parts_->rays.triangles();
        stats->buildSeconds = parts_->buildSeconds;
        stats->renderSeconds = secondsSince(start);
    }
    return picture;
}

}  // namespace tavora::studio
