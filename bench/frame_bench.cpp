// Whole frames beside the bare loop over the same camera rays and the same lights, in the
// same process, in turn; medians of the rounds. Prints one line a contender, then what
// scripts/bench reads: metric|ours|reference|ratio|goal|met.
//
//   frame_bench MODULE [--models FOLDER] [--scene NAME|FILE] [--only KIND]
//               [--rounds N] [--threads N] [--picture FILE.png]
//
// Without --scene: suns, lamps, models, "many lights". With --only, for a profiler, it times
// that kind alone (bare, frame, default, adaptive, one-thread, shared-copy) and prints no
// rows. --picture shows what the first scene looks like.

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <exception>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "bench/bare_loop.h"
#include "bench/scenes.h"
#include "studio/render/final/renderer.h"
#include "studio/render/image/picture_file.h"
#include "studio/util/color.h"

namespace {

using namespace tavora::bench;
using namespace tavora::studio;

constexpr int kWidth = 960;
constexpr int kHeight = 540;
constexpr int kSamples = 16;
/// A race that takes longer than this ends once there is a median to speak of.
constexpr double kLongRace = 30;
constexpr int kLeastRounds = 3;
/// Errors are measured in a picture of a third of the size, or less where there are so many
/// lights that it would take minutes, beside one that has so many samples that its own error
/// does not count. Steps weigh the more the smaller it is.
constexpr int kErrorScale = 3;
constexpr int kErrorScaleOfManyLights = 6;
constexpr int kEvenSamples = 64;
constexpr int kReferenceSamples = 1024;

/// What is timed.
enum class Kind { Bare, Frame, Default, Adaptive, OneThread, SharedCopy };

struct KindName {
    Kind kind;
    const char* option;
    const char* text;
};

constexpr KindName kKinds[] = {
    {Kind::Bare, "bare", "bare loop, 16 samples"},
    {Kind::Frame, "frame", "whole frame, 16 samples"},
    {Kind::Default, "default", "whole frame, 4..64 (default)"},
    {Kind::Adaptive, "adaptive", "whole frame, 1..64"},
    {Kind::OneThread, "one-thread", "whole frame, one thread"},
    {Kind::SharedCopy, "shared-copy", "whole frame, one module copy for all"},
};

struct Wanted {
    SceneFiles files;
    std::string scene;  ///< empty: all
    std::optional<Kind> only;
    std::string picture;
    int rounds = 5;
    int threads = static_cast<int>(std::max(std::thread::hardware_concurrency(), 1U));
};

/// The studio's renderer on a scene.
class Frame {
  public:
    Frame(const BenchScene& bench, const Wanted& wanted)
        : bench_(&bench), wanted_(&wanted), renderer_(bench.scene) {}

    /// A picture of a part of the size with `samples` a pixel; with up to `most` where they
    /// differ, if that is more.
    RenderOptions options(int samples, int most = 0, int scale = 1) const {
        RenderOptions options;
        options.width = kWidth / scale;
        options.height = kHeight / scale;
        options.samples = samples;
        options.maxSamples = most;
        options.threads = wanted_->threads;
        return options;
    }

    Picture render(const RenderOptions& options) {
        return renderer_.render(bench_->camera, bench_->lights, bench_->shaders,
                                wanted_->files.module, options, {}, &stats_);
    }

    /// Of the last picture.
    RayCounts rays() const { return {stats_.primaryRays, stats_.shadowRays}; }

  private:
    const BenchScene* bench_;
    const Wanted* wanted_;
    Renderer renderer_;
    RenderStats stats_;
};

RenderOptions optionsOf(const Frame& frame, Kind kind) {
    RenderOptions options = frame.options(kSamples);
    if (kind == Kind::Default) options = frame.options(4, 64);
    if (kind == Kind::Adaptive) options = frame.options(1, 64);
    if (kind == Kind::OneThread) options.threads = 1;
    if (kind == Kind::SharedCopy) options.modulePerWorker = false;
    return options;
}

double medianOf(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

struct Contender {
    const KindName* name = nullptr;
    std::function<RayCounts()> run;
    std::vector<double> seconds{};
    std::vector<double> processorSeconds{};  ///< of all threads; others cannot stretch them much
    RayCounts rays{};
};

using Contenders = std::vector<Contender>;

double secondsSince(std::chrono::steady_clock::time_point start) {
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

void race(Contenders& contenders, int rounds) {
    const auto begin = std::chrono::steady_clock::now();
    for (int round = 0; round < rounds; ++round) {
        if (round >= kLeastRounds && secondsSince(begin) > kLongRace) return;
        for (Contender& contender : contenders) {
            const auto start = std::chrono::steady_clock::now();
            const std::clock_t processor = std::clock();
            contender.rays = contender.run();
            contender.seconds.push_back(secondsSince(start));
            contender.processorSeconds.push_back(static_cast<double>(std::clock() - processor) /
                                                 CLOCKS_PER_SEC);
        }
    }
}

void printContenders(const std::string& scene, const Contenders& contenders) {
    for (const Contender& contender : contenders) {
        std::printf(
            "%-12s %-38s %8.3f s, of all processors %8.3f s, %zu rounds; million rays: %.2f "
            "camera, %.2f shadow\n",
            scene.c_str(), contender.name->text, medianOf(contender.seconds),
            medianOf(contender.processorSeconds), contender.seconds.size(),
            static_cast<double>(contender.rays.camera) * 1e-6,
            static_cast<double>(contender.rays.shadow) * 1e-6);
    }
    std::fflush(stdout);
}

/// A line of the table.
struct Row {
    std::string metric;
    double ours = 0;
    double reference = 0;
    const char* unit = "s";
    double goal = 0;  ///< of the ratio; 0: none
    bool atMost = true;

    double ratio() const { return ours / reference; }
};

void print(const Row& row) {
    const std::string& metric = row.metric;
    std::printf("%s|%.3f %s|%.3f %s|%.2f|", metric.c_str(), row.ours, row.unit, row.reference,
                row.unit, row.ratio());
    if (row.goal == 0) {
        std::printf("|\n");
        return;
    }
    const bool met = row.atMost ? row.ratio() <= row.goal : row.ratio() >= row.goal;
    std::printf("%s %.1f|%s\n", row.atMost ? "at most" : "at least", row.goal, met ? "yes" : "no");
}

/// What is compared with the bare loop's 16 samples.
struct Metric {
    Kind kind;
    const char* text;
    double goal;
};

constexpr Metric kMetrics[] = {
    {Kind::Frame, "whole frame, 16 samples, beside the bare loop", 2.0},
    {Kind::Default, "adaptive 4..64 (default), beside the bare loop at 16 samples", 1.0},
    {Kind::Adaptive, "adaptive 1..64, beside the bare loop at 16 samples", 0.6},
};

/// Mean distance of display-referred channels, in steps of 255.
double meanChannelError(const Picture& a, const Picture& b) {
    double sum = 0;
    for (std::size_t i = 0; i < a.rgba.size(); ++i) {
        const auto shown = [i](const Picture& picture) {
            const auto value = static_cast<double>(picture.rgba[i]);
            return i % 4 == 3 ? value : toEncoded(value);
        };
        sum += std::abs(shown(a) - shown(b));
    }
    return 255 * sum / static_cast<double>(a.rgba.size());
}

std::vector<Row> errorRows(const std::string& scene, Frame& frame, int scale) {
    const auto picture = [&](int samples, int most = 0) {
        return frame.render(frame.options(samples, most, scale));
    };
    const Picture reference = picture(kReferenceSamples);
    const double even = meanChannelError(picture(kEvenSamples), reference);
    const auto row = [&](const char* sampling, int least) {
        return Row{scene + ": mean error, adaptive " + sampling + ", beside 64 samples everywhere",
                   meanChannelError(picture(least, kEvenSamples), reference), even, "of 255", 1};
    };
    return {row("1..64", 1), row("4..64 (default)", 4)};
}

/// One scene, its renderer and its reference.
class SceneBench {
  public:
    SceneBench(const std::string& scene, const Wanted& wanted)
        : wanted_(&wanted),
          bench_(makeScene(scene, wanted.files, static_cast<double>(kWidth) / kHeight)),
          frame_(bench_, wanted) {}

    const std::string& name() const { return bench_.name; }
    Frame& frame() { return frame_; }
    int errorScale() const {
        constexpr std::size_t kManyLights = 20;
        return bench_.lights.lights.size() < kManyLights ? kErrorScale : kErrorScaleOfManyLights;
    }

    /// Times these kinds in turn and prints what each took.
    Contenders timed(const std::vector<Kind>& kinds) {
        Contenders contenders;
        for (const KindName& name : kKinds) {
            if (std::find(kinds.begin(), kinds.end(), name.kind) != kinds.end())
                contenders.push_back({&name, runOf(name.kind)});
        }
        race(contenders, wanted_->rounds);
        printContenders(bench_.name, contenders);
        return contenders;
    }

  private:
    std::function<RayCounts()> runOf(Kind kind) {
        if (kind == Kind::Bare) {
            if (!bare_) bare_.emplace(bench_.scene, bench_.camera, bench_.countedLights);
            return [this] { return bare_->trace({kWidth, kHeight, kSamples, wanted_->threads}); };
        }
        return [this, options = optionsOf(frame_, kind)] {
            frame_.render(options);
            return frame_.rays();
        };
    }

    const Wanted* wanted_;
    BenchScene bench_;
    Frame frame_;
    std::optional<BareLoop> bare_;
};

double secondsOf(const Contenders& contenders, Kind kind) {
    for (const Contender& contender : contenders) {
        if (contender.name->kind == kind) return medianOf(contender.seconds);
    }
    throw std::logic_error("a kind was not timed");
}

std::vector<Row> metricRows(const std::string& scene, const Contenders& contenders) {
    std::vector<Row> rows;
    for (const Metric& metric : kMetrics) {
        rows.push_back({scene + ": " + metric.text, secondsOf(contenders, metric.kind),
                        secondsOf(contenders, Kind::Bare), "s", metric.goal});
    }
    return rows;
}

/// One thread beside all, and what it costs that threads share a module copy.
std::vector<Row> threadRows(const std::string& scene, const Contenders& contenders, int threads) {
    const double frame = secondsOf(contenders, Kind::Frame);
    std::vector<Row> rows;
    const std::map<int, double> goals{{2, 1.9}, {16, 14}};
    if (const auto goal = goals.find(threads); goal != goals.end()) {
        rows.push_back({scene + ": 1 thread beside " + std::to_string(threads),
                        secondsOf(contenders, Kind::OneThread), frame, "s", goal->second, false});
    }
    rows.push_back({scene + ": threads sharing one module copy, beside a copy each",
                    secondsOf(contenders, Kind::SharedCopy), frame});
    return rows;
}

/// For each metric the row of the scene where the ratio is largest.
std::vector<Row> worstRows(const std::vector<std::vector<Row>>& metricsOfScenes) {
    std::vector<Row> worst;
    for (std::size_t metric = 0; metric < std::size(kMetrics); ++metric) {
        const Row* largest = &metricsOfScenes.front()[metric];
        for (const std::vector<Row>& rows : metricsOfScenes) {
            if (rows[metric].ratio() > largest->ratio()) largest = &rows[metric];
        }
        worst.push_back(*largest);
        worst.back().metric = "worst of these, " + largest->metric;
    }
    return worst;
}

void printRows(const std::vector<Row>& rows) {
    for (const Row& row : rows)
        print(row);
}

/// What is asked for, all of it made before anything is timed: what is missing is told at once.
std::vector<std::unique_ptr<SceneBench>> scenesOf(const Wanted& wanted) {
    std::vector<std::unique_ptr<SceneBench>> scenes;
    for (const std::string& name : wanted.scene.empty() ? sceneNames() : std::vector{wanted.scene})
        scenes.push_back(std::make_unique<SceneBench>(name, wanted));
    return scenes;
}

/// Times the scenes and prints the table's rows.
void measureAll(const std::vector<std::unique_ptr<SceneBench>>& scenes, int threads) {
    std::vector<std::vector<Row>> metrics;
    std::vector<Row> others;
    const auto append = [](std::vector<Row>& rows, const std::vector<Row>& more) {
        rows.insert(rows.end(), more.begin(), more.end());
    };
    for (const auto& scene : scenes) {
        const bool isFirst = scene == scenes.front();
        std::vector<Kind> kinds{Kind::Bare, Kind::Frame, Kind::Default, Kind::Adaptive};
        if (isFirst) kinds.insert(kinds.end(), {Kind::OneThread, Kind::SharedCopy});
        const Contenders contenders = scene->timed(kinds);
        metrics.push_back(metricRows(scene->name(), contenders));
        append(others, errorRows(scene->name(), scene->frame(), scene->errorScale()));
        if (isFirst) append(others, threadRows(scene->name(), contenders, threads));
    }
    for (const std::vector<Row>& rows : metrics)
        printRows(rows);
    // Many lights of which few count are a case by itself.
    constexpr std::size_t kCompared = 3;
    if (metrics.size() > kCompared) {
        metrics.resize(kCompared);
        printRows(worstRows(metrics));
    }
    printRows(others);
}

void measure(const Wanted& wanted) {
    const auto scenes = scenesOf(wanted);
    if (!wanted.picture.empty()) {
        Frame& frame = scenes.front()->frame();
        writePicture(frame.render(frame.options(4, 64)), wanted.picture,
                     pictureFormat(wanted.picture, {}, false));
    }
    if (!wanted.only) return measureAll(scenes, wanted.threads);
    for (const auto& scene : scenes)
        scene->timed({*wanted.only});
}

Kind kindOf(const std::string& option) {
    for (const KindName& kind : kKinds) {
        if (kind.option == option) return kind.kind;
    }
    throw std::invalid_argument("no kind of render is called " + option);
}

int countOf(const std::string& text) {
    char* end = nullptr;
    const long count = std::strtol(text.c_str(), &end, 10);
    if (*end != 0 || count < 1 || count > 1000)
        throw std::invalid_argument("a count must be 1 to 1000, not " + text);
    return static_cast<int>(count);
}

Wanted wantedOf(const std::vector<std::string>& words) {
    if (words.empty()) throw std::invalid_argument("name the module");
    Wanted wanted;
    wanted.files.module = words.front();
    if (const char* models = std::getenv("TAVORA_MODELS")) wanted.files.models = models;
    const std::map<std::string, std::function<void(const std::string&)>> options{
        {"--models", [&](const std::string& value) { wanted.files.models = value; }},
        {"--scene", [&](const std::string& value) { wanted.scene = value; }},
        {"--only", [&](const std::string& value) { wanted.only = kindOf(value); }},
        {"--rounds", [&](const std::string& value) { wanted.rounds = countOf(value); }},
        {"--threads", [&](const std::string& value) { wanted.threads = countOf(value); }},
        {"--picture", [&](const std::string& value) { wanted.picture = value; }}};
    for (std::size_t i = 1; i < words.size(); i += 2) {
        const auto option = options.find(words[i]);
        if (option == options.end()) throw std::invalid_argument("no option " + words[i]);
        if (i + 1 == words.size()) throw std::invalid_argument(words[i] + " wants a value");
        option->second(words[i + 1]);
    }
    return wanted;
}

}  // namespace

int main(int count, char** arguments) {
    try {
        measure(wantedOf({arguments + 1, arguments + count}));
    } catch (const std::invalid_argument& error) {
        std::fprintf(stderr,
                     "frame_bench: %s\nusage: frame_bench MODULE [--models FOLDER] "
                     "[--scene NAME|FILE] [--only KIND] [--rounds N] [--threads N] "
                     "[--picture FILE.png]\n",
                     error.what());
        return 2;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "frame_bench: %s\n", error.what());
        return 1;
    }
    return 0;
}
