// How long an edit takes to show: a whole render of the picture beside the live
// picture's first whole one and clean one after a change of one surface's
// settings, in the same process, in turn; medians of the rounds. Prints a table.
//
//   edit_bench SCENE MODULE [ROUNDS] [THREADS]

#include <algorithm>
#include <array>
#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <memory>
#include <mutex>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "studio/link/module_copy.h"
#include "studio/link/shader.h"
#include "studio/render/final/renderer.h"
#include "studio/render/live/live_picture.h"
#include "studio/scene/framing/default_view.h"
#include "studio/scene/gltf/reader.h"
#include "studio/scene/settings/settings.h"
#include "studio/services/registry.h"

namespace {

using namespace tavora::studio;
using Clock = std::chrono::steady_clock;

constexpr int kWidth = 960;
constexpr int kHeight = 540;
constexpr int kSamples = 16;

double secondsSince(Clock::time_point start) {
    return std::chrono::duration<double>(Clock::now() - start).count();
}

double median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

/// The scene as it is edited. Surfaces wear what the file keeps on them; when
/// it keeps nothing, all wear a new shader.
struct Work {
    Work(const char* file, const char* moduleFile)
        : scene(readGltf(file)),
          module(moduleFile),
          camera(scene.cameras.empty() ? framingCamera(scene, double{kWidth} / kHeight)
                                       : scene.cameras.front()),
          lights(std::make_shared<const LightSet>(resolveLights(scene, camera, {}))) {
        shading.resize(scene.surfaces.size());
        bool any = false;
        for (std::size_t i = 0; i < shading.size(); ++i) {
            shading[i] = scene.surfaces[i].shader;
            any = any || activeBlock(shading[i]) != nullptr;
        }
        if (!any)
            shading.assign(
                shading.size(),
                SurfaceShader{.block = newShaderSettings(ModuleCopy(module, findService))});
    }

    Scene scene;
    std::filesystem::path module;
    Camera camera;
    std::shared_ptr<const LightSet> lights;
    SurfaceShaders shading;
};

/// The live picture, and waiting for it.
class Live {
  public:
    Live(const Work& work, int threads)
        : picture_(work.scene, work.module, optionsFor(threads), [this] { hear(); }) {
        picture_.setView(work.camera, kWidth, kHeight);
        picture_.setLights(work.lights);
        wait(picture_.setShading(work.shading), true);
    }

    LivePicture& picture() { return picture_; }

    /// Until that revision shows in full resolution, or clean.
    void wait(std::uint64_t revision, bool clean) {
        std::unique_lock lock(mutex_);
        for (;;) {
            if (!picture_.failure().empty()) throw std::runtime_error(picture_.failure());
            const auto frame = picture_.latest();
            const bool there = frame != nullptr && frame->revision == revision &&
                               frame->blockSize == 1 && (!clean || frame->refined == 1);
            if (there) return;
            heard_.wait(lock, [this] { return std::exchange(news_, false); });
        }
    }

  private:
    static LiveOptions optionsFor(int threads) {
        LiveOptions options;
        options.threads = threads;
        options.samples = kSamples;
        return options;
    }

    void hear() {
        const std::lock_guard lock(mutex_);
        news_ = true;
        heard_.notify_all();
    }

    std::mutex mutex_;
    std::condition_variable heard_;
    bool news_ = false;
    LivePicture picture_;
};

/// A surface that has the shader.
struct Seen {
    std::size_t surface = 0;
    int places = 0;  ///< of a grid over the picture
};

/// By how much of the picture they fill, the largest first.
std::vector<Seen> seenSurfaces(const Work& work, const LivePicture& picture) {
    std::vector<Seen> seen(work.shading.size());
    for (std::size_t i = 0; i < seen.size(); ++i)
        seen[i].surface = i;
    for (int y = 0; y < kHeight; y += 4) {
        for (int x = 0; x < kWidth; x += 4) {
            const auto picked = picture.pickAt(x, y);
            if (picked) ++seen[picked->surface].places;
        }
    }
    std::erase_if(seen, [&](const Seen& one) {
        return one.places == 0 || activeBlock(work.shading[one.surface]) == nullptr;
    });
    std::sort(seen.begin(), seen.end(),
              [](const Seen& a, const Seen& b) { return a.places > b.places; });
    return seen;
}

/// Moves the first zone's colour a little, another way each round.
SurfaceShader edited(SurfaceShader shader, int round) {
    Settings settings = settingsOf(shader.block);
    settings["zoneList"][0]["color"] = {0.2 + 0.01 * (round % 50), 0.3, 0.4};
    shader.block = blockOf(settings);
    return shader;
}

struct Row {
    std::string name;
    std::vector<double> first{};
    std::vector<double> clean{};
};

void edit(Live& live, const SurfaceShader& shader, std::size_t surface, Row& row) {
    const auto start = Clock::now();
    const std::uint64_t revision = live.picture().setSurface(surface, shader);
    live.wait(revision, false);
    row.first.push_back(secondsSince(start));
    live.wait(revision, true);
    row.clean.push_back(secondsSince(start));
}

/// Turns the camera a little, another way each round. Returns after how long there was a first
/// picture, which may be coarse.
double turn(Live& live, const Work& work, int round) {
    Camera camera = work.camera;
    camera.cameraToWorld =
        Imath::M44d().rotate(Imath::V3d(0, 0.01 * (round + 1), 0)) * camera.cameraToWorld;
    live.wait(live.picture().setView(camera, kWidth, kHeight), true);
    return live.picture().stats().firstPictureSeconds;
}

double renderAnew(Renderer& renderer, const Work& work, int threads) {
    RenderOptions options;
    options.width = kWidth;
    options.height = kHeight;
    options.samples = kSamples;
    options.threads = threads;
    const auto start = Clock::now();
    renderer.render(work.camera, *work.lights, work.shading, work.module, options, {}, nullptr);
    return secondsSince(start);
}

void print(const Row& row, double whole) {
    std::printf("%-34s %9.1f ms  1/%-6.1f %9.1f ms  1/%.1f\n", row.name.c_str(),
                1000 * median(row.first), whole / median(row.first), 1000 * median(row.clean),
                whole / median(row.clean));
}

/// For scripts/bench: metric|ours|reference|ratio|goal|met.
void printGoal(const char* metric, double ours, double whole, double goal) {
    std::printf("%s, beside rendering anew|%.1f ms|%.0f ms|%.3f|under %.0f ms|%s\n", metric,
                1000 * ours, 1000 * whole, ours / whole, 1000 * goal, ours < goal ? "yes" : "no");
}

Row rowFor(const Work& work, const Seen& seen) {
    const double share = 100.0 * seen.places * 16 / (kWidth * kHeight);
    char text[100];
    std::snprintf(text, sizeof text, "edit of %.16s (%.1f%% of it)",
                  work.scene.surfaces[seen.surface].name.c_str(), share);
    return {text};
}

void run(const char* file, const char* module, int rounds, int threads) {
    const Work work(file, module);
    Renderer renderer(work.scene);
    Live live(work, threads);
    const std::vector<Seen> seen = seenSurfaces(work, live.picture());
    if (seen.empty()) throw std::runtime_error("the scene shows no surface that has the shader");
    const std::array<Seen, 2> edits{seen.front(), seen[seen.size() * 3 / 4]};
    std::array<Row, 2> rows{rowFor(work, edits[0]), rowFor(work, edits[1])};
    std::vector<double> whole;
    std::vector<double> turns;
    for (int round = 0; round < rounds; ++round) {
        whole.push_back(renderAnew(renderer, work, threads));
        for (std::size_t i = 0; i < 2; ++i)
            edit(live, edited(*work.shading[edits[i].surface], round), edits[i].surface, rows[i]);
    }
    for (int round = 0; round < rounds; ++round)
        turns.push_back(turn(live, work, round));
    std::printf("%-34s %9.1f ms\n", "render anew", 1000 * median(whole));
    std::printf("%-34s %12s  %8s %12s\n", "", "first whole", "", "clean");
    for (const Row& row : rows)
        print(row, median(whole));
    printGoal("edit to a full picture", median(rows.front().first), median(whole), 0.02);
    printGoal("turn of the view to a first picture", median(turns), median(whole), 0.06);
    const LiveStats stats = live.picture().stats();
    std::printf("kept %.0f MB, %.0f%% of the samples %s\n",
                static_cast<double>(stats.cachedBytes) / 1e6, 100 * stats.cachedFraction,
                stats.notice.c_str());
}

}  // namespace

int main(int count, char** arguments) {
    if (count < 3) {
        std::fprintf(stderr, "usage: edit_bench SCENE MODULE [ROUNDS] [THREADS]\n");
        return 2;
    }
    const long rounds = count > 3 ? std::strtol(arguments[3], nullptr, 10) : 5;
    const long threads = count > 4 ? std::strtol(arguments[4], nullptr, 10)
                                   : static_cast<long>(std::thread::hardware_concurrency());
    try {
        run(arguments[1], arguments[2], static_cast<int>(std::max(rounds, 1L)),
            static_cast<int>(std::max(threads, 1L)));
    } catch (const std::exception& error) {
        std::fprintf(stderr, "edit_bench: %s\n", error.what());
        return 1;
    }
    return 0;
}
