#include "studio/render/renderer.h"

#include <algorithm>
#include <chrono>
#include <span>
#include <stdexcept>
#include <thread>
#include <utility>

#include "studio/render/film.h"
#include "studio/render/lane_team.h"
#include "studio/render/lanes.h"
#include "studio/render/ray_scene.h"
#include "studio/render/refinement.h"
#include "studio/render/render_lane.h"
#include "studio/render/sample_rounds.h"
#include "studio/render/tiles.h"
#include "studio/services/scene_index.h"

namespace tavora::studio {
namespace {

using Clock = std::chrono::steady_clock;

double secondsSince(Clock::time_point start) {
    return std::chrono::duration<double>(Clock::now() - start).count();
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

/// The lanes of a render, and the threads that they work on: one of them keeps to
/// its lane from the first round to the last, whose module's mutex is its own.
struct Lanes {
    /// `shaders` has an entry for each lane; see makeLane().
    Lanes(const RenderJob& job, std::span<std::shared_ptr<LaneShaders>> shaders_)
        : shaders(shaders_), each(shaders.size()), team(shaders.size() + 1) {
        each[0] = makeLane(job, shaders[0], nullptr);
        team.run([&](std::size_t thread) {
            if (thread > 1) each[thread - 1] = makeLane(job, shaders[thread - 1], each[0].get());
        });
    }
    ~Lanes() {
        for (const auto& own : shaders) {
            if (own != nullptr) own->endPass();
        }
    }
    Lanes(const Lanes&) = delete;
    Lanes& operator=(const Lanes&) = delete;

    std::span<std::shared_ptr<LaneShaders>> shaders;
    std::vector<std::unique_ptr<RenderLane>> each;
    LaneTeam team;
};

/// Runs `work(lane, tile)` for all tiles. `progress` takes their share done, 0..1.
void forTiles(Lanes& lanes, const std::vector<PixelBox>& tiles, const RenderWatch& watch,
              const std::function<void(RenderLane& lane, const PixelBox& tile)>& work,
              const std::function<void(double share)>& progress) {
    const auto runOne = [&](std::size_t lane, std::size_t tile) {
        work(*lanes.each[lane], tiles[tile]);
    };
    const auto report = [&](std::size_t done) {
        if (watch.progress) {
            progress(static_cast<double>(done) / static_cast<double>(tiles.size()));
        }
        return watch.stop == nullptr || !*watch.stop;
    };
    if (!runLanes(lanes.team, tiles.size(), runOne, report)) throw RenderStopped();
}

void renderEvenly(const RenderWatch& watch, Lanes& lanes, Picture& picture) {
    forTiles(
        lanes, tilesOf(picture.window), watch,
        [&](RenderLane& lane, const PixelBox& tile) { lane.renderTile(tile, watch.stop, picture); },
        watch.progress);
}

/// How much of the work is done, where only its first round is known before. A
/// later round is taken to need a part of the one before it until it is there.
class RoundProgress {
  public:
    RoundProgress(const std::vector<SampleRun>& rounds, std::size_t pixels) {
        double wanting = static_cast<double>(pixels);
        for (const SampleRun& round : rounds) {
            work_.push_back(wanting * static_cast<double>(round.size()));
            wanting *= kUsualShare;
        }
    }

    void begin(std::size_t round, double work) {
        round_ = round;
        work_[round] = work;
    }

    /// Never less than before.
    double at(double share) {
        double done = work_[round_] * share;
        double all = 0;
        for (std::size_t i = 0; i < work_.size(); ++i) {
            all += work_[i];
            if (i < round_) done += work_[i];
        }
        return last_ = std::max(last_, all > 0 ? done / all : 1);
    }

  private:
    static constexpr double kUsualShare = 0.2;
    std::vector<double> work_;
    std::size_t round_ = 0;
    double last_ = 0;
};

/// Decides for the `time`th time which pixels want more samples, and leaves the
/// tiles with such, those with most first, so that no lane is left alone with a long
/// one. Returns how many pixels there are.
std::size_t keepWanting(Lanes& lanes, const RenderWatch& watch, int time, Refinement& refinement,
                        std::vector<PixelBox>& tiles) {
    std::vector<std::pair<std::size_t, PixelBox>> counted(tiles.size());
    forTiles(
        lanes, tiles, watch,
        [&](RenderLane&, const PixelBox& tile) {
            const auto place = static_cast<std::size_t>(&tile - tiles.data());
            counted[place] = {refinement.decide(tile, time), tile};
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

void develop(Lanes& lanes, const RenderWatch& watch, const Refinement& refinement,
             Picture& picture) {
    forTiles(
        lanes, tilesOf(picture.window), watch,
        [&](RenderLane&, const PixelBox& tile) {
            for (int y = tile.top; y < tile.bottom; ++y) {
                for (int x = tile.left; x < tile.right; ++x)
                    refinement.develop(x, y, picture.pixel(x, y));
            }
        },
        [](double) {});
}

void renderInRounds(const RenderOptions& options, const RenderWatch& watch, Lanes& lanes,
                    Picture& picture) {
    Refinement refinement(picture.window, {0, 0, options.width, options.height});
    const std::vector<SampleRun> rounds = roundsOf(options);
    std::vector<PixelBox> tiles = tilesOf(refinement.area());
    std::size_t wanting = picture.rgba.size() / 4;
    RoundProgress progress(rounds, wanting);
    int decisions = 0;
    for (std::size_t round = 0; round < rounds.size(); ++round) {
        forTiles(
            lanes, tiles, watch,
            [&](RenderLane& lane, const PixelBox& tile) {
                lane.refineTile(tile, rounds[round], watch.stop, refinement);
            },
            [&](double share) { watch.progress(progress.at(share)); });
        if (round + 1 == rounds.size()) break;
        if (rounds[round].last >= static_cast<std::size_t>(options.samples)) {
            wanting = keepWanting(lanes, watch, ++decisions, refinement, tiles);
        }
        const auto samples = static_cast<double>(rounds[round + 1].size());
        progress.begin(round + 1, static_cast<double>(wanting) * samples);
    }
    develop(lanes, watch, refinement, picture);
}

void layOver(const Backdrop& backdrop, Picture& picture) {
    for (std::size_t i = 0; i < picture.rgba.size(); i += 4)
        backdrop.layUnder(&picture.rgba[i]);
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

    /// The shaders of the threads of a render. Those of an earlier one serve again where
    /// they were made for the same.
    std::span<std::shared_ptr<LaneShaders>> shadersFor(std::size_t lanes,
                                                       const SurfaceShaders& shading,
                                                       const std::filesystem::path& module) {
        if (shaders.size() != lanes || madeFor != shading || madeOf != module) shaders.clear();
        shaders.resize(lanes);
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
    std::vector<std::shared_ptr<LaneShaders>> shaders;  ///< by lane
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
    const RenderJob job{
        *parts_->rays,
        lights,
        shading,
        module,
        options,
        View(camera, options.width, options.height, std::max(options.samples, options.mostSamples)),
        patternsOf(options)};
    const std::size_t count = laneCount(options, tilesOf(picture.window).size());
    Lanes lanes(job, parts_->shadersFor(count, shading, module));
    if (isAdaptive(options)) {
        renderInRounds(options, watch, lanes, picture);
    } else {
        renderEvenly(watch, lanes, picture);
    }
    layOver(Backdrop(options.background), picture);
    if (stats != nullptr) {
        *stats = {};
        for (const auto& lane : lanes.each)
            lane->addTo(*stats);
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
