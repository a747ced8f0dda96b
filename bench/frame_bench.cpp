// A whole frame beside Embree alone: the same primary rays, and for each hit a
// shadow ray to each light that its polygon faces, in the same process, in
// turn; medians of the rounds. Prints one line a contender, then what
// scripts/bench reads: metric|ours|reference|ratio|goal|met.
//
//   frame_bench MODULE [ROUNDS] [THREADS]

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <embree3/rtcore.h>
#include <exception>
#include <functional>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "studio/link/module_copy.h"
#include "studio/link/shader.h"
#include "studio/render/lane_team.h"
#include "studio/render/lanes.h"
#include "studio/render/renderer.h"
#include "studio/render/sample_pattern.h"
#include "studio/render/tiles.h"
#include "studio/render/view.h"
#include "studio/services/registry.h"
#include "studio/util/color.h"
#include "tests/render/test_scene.h"

namespace {

using namespace tavora::studio;
using Imath::V3d;

constexpr int kWidth = 960;
constexpr int kHeight = 540;
constexpr int kSamples = 16;

void addObject(Scene& scene, std::shared_ptr<const Mesh> mesh, const Imath::M44d& place) {
    auto object = std::make_unique<Object>();
    object->objectToWorld = place;
    object->parts.push_back({std::move(mesh), 0, 0});
    scene.objects.push_back(std::move(object));
}

/// A grid of spheres on a floor: 192,000 triangles.
Scene benchScene() {
    Scene scene;
    scene.surfaces.resize(1);
    const auto ball = sphereMesh(1, 64, 31);
    for (int z = 0; z < 5; ++z) {
        for (int x = 0; x < 10; ++x)
            addObject(scene, ball, Imath::M44d().translate(V3d(2.2 * x - 9.9, 1, -2.2 * z)));
    }
    auto floor = std::make_shared<Mesh>();
    floor->positions = {{-30, 0, 30}, {30, 0, 30}, {30, 0, -30}, {-30, 0, -30}};
    floor->normals.assign(4, {0, 1, 0});
    floor->triangles = {{0, 1, 2}, {0, 2, 3}};
    addObject(scene, floor, {});
    return scene;
}

LightSet benchLights() {
    LightSet rig;
    for (const V3d& direction : {V3d(0.5, -1, -0.5), V3d(-0.8, -1, -0.3), V3d(0, -1, 0.4)}) {
        auto light = std::make_unique<Light>();
        light->name = "light " + std::to_string(rig.lights.size());
        light->direction = direction.normalized();
        rig.lights.push_back({light.get(), V3d(0.4), 1});
        rig.own.push_back(std::move(light));
    }
    rig.ambient = V3d(0.1);
    return rig;
}

Camera benchCamera() {
    Camera camera;
    camera.verticalFov = 0.7;
    camera.cameraToWorld =
        Imath::M44d().rotate(V3d(-0.4, 0, 0)) * Imath::M44d().translate(V3d(0, 7, 12));
    return camera;
}

/// Embree and the same triangles, nothing else.
class BareScene {
  public:
    BareScene(const Scene& scene, const char* device)
        : device_(rtcNewDevice(device)), scene_(rtcNewScene(device_)) {
        rtcSetSceneFlags(scene_, RTC_SCENE_FLAG_ROBUST);
        for (const auto& object : scene.objects)
            attach(*object);
        rtcCommitScene(scene_);
    }
    ~BareScene() {
        rtcReleaseScene(scene_);
        rtcReleaseDevice(device_);
    }
    BareScene(const BareScene&) = delete;
    BareScene& operator=(const BareScene&) = delete;

    RTCScene handle() const { return scene_; }

  private:
    void attach(const Object& object) {
        const Mesh& mesh = *object.parts[0].mesh;
        RTCGeometry geometry = rtcNewGeometry(device_, RTC_GEOMETRY_TYPE_TRIANGLE);
        auto* vertices = static_cast<Imath::V3f*>(
            rtcSetNewGeometryBuffer(geometry, RTC_BUFFER_TYPE_VERTEX, 0, RTC_FORMAT_FLOAT3,
                                    sizeof(Imath::V3f), mesh.positions.size()));
        for (std::size_t i = 0; i < mesh.positions.size(); ++i)
            vertices[i] = Imath::V3f(V3d(mesh.positions[i]) * object.objectToWorld);
        auto* indices = static_cast<std::array<std::uint32_t, 3>*>(
            rtcSetNewGeometryBuffer(geometry, RTC_BUFFER_TYPE_INDEX, 0, RTC_FORMAT_UINT3,
                                    sizeof(mesh.triangles[0]), mesh.triangles.size()));
        std::copy(mesh.triangles.begin(), mesh.triangles.end(), indices);
        rtcCommitGeometry(geometry);
        rtcAttachGeometry(scene_, geometry);
        rtcReleaseGeometry(geometry);
    }

    RTCDevice device_;
    RTCScene scene_;
};

RTCRayHit rayHit(const Ray& ray) {
    RTCRayHit query{};
    query.ray.org_x = static_cast<float>(ray.origin.x);
    query.ray.org_y = static_cast<float>(ray.origin.y);
    query.ray.org_z = static_cast<float>(ray.origin.z);
    query.ray.dir_x = static_cast<float>(ray.direction.x);
    query.ray.dir_y = static_cast<float>(ray.direction.y);
    query.ray.dir_z = static_cast<float>(ray.direction.z);
    query.ray.tfar = INFINITY;
    query.ray.mask = ~0U;
    query.hit.geomID = RTC_INVALID_GEOMETRY_ID;
    return query;
}

/// The shadow ray from a hit to a light, or none where the polygon faces away.
bool shadowRay(const RTCRayHit& from, const V3d& lightDirection, RTCRay& ray) {
    const Imath::V3f normal = Imath::V3f(from.hit.Ng_x, from.hit.Ng_y, from.hit.Ng_z).normalized();
    const Imath::V3f toLight(-lightDirection);
    if (normal.dot(toLight) <= 0) return false;
    ray = RTCRay{};
    ray.org_x = from.ray.org_x + from.ray.dir_x * from.ray.tfar + normal.x * 1e-4F;
    ray.org_y = from.ray.org_y + from.ray.dir_y * from.ray.tfar + normal.y * 1e-4F;
    ray.org_z = from.ray.org_z + from.ray.dir_z * from.ray.tfar + normal.z * 1e-4F;
    ray.dir_x = toLight.x;
    ray.dir_y = toLight.y;
    ray.dir_z = toLight.z;
    ray.tfar = INFINITY;
    ray.mask = ~0U;
    return true;
}

/// A row of a tile at a time: the rays that Embree takes as one stream.
class BareRow {
  public:
    BareRow(const BareScene& scene, const LightSet& rig, bool streams)
        : scene_(scene.handle()), rig_(&rig), streams_(streams) {}

    std::uint64_t trace(const View& view, const std::vector<Imath::V2d>& pattern, int left,
                        int right, int y) {
        primary_.clear();
        for (int x = left; x < right; ++x) {
            for (const Imath::V2d& place : pattern)
                primary_.push_back(rayHit(view.rayThrough(x + place.x, y + place.y)));
        }
        intersect();
        std::uint64_t rays = primary_.size();
        for (const ResolvedLight& lit : rig_->lights) {
            shadow_.clear();
            RTCRay ray;
            for (const RTCRayHit& hit : primary_) {
                if (hit.hit.geomID == RTC_INVALID_GEOMETRY_ID) continue;
                if (shadowRay(hit, lit.light->direction, ray)) shadow_.push_back(ray);
            }
            occlude();
            rays += shadow_.size();
        }
        return rays;
    }

  private:
    void intersect() {
        RTCIntersectContext context;
        rtcInitIntersectContext(&context);
        context.flags = RTC_INTERSECT_CONTEXT_FLAG_COHERENT;
        if (streams_) {
            rtcIntersect1M(scene_, &context, primary_.data(),
                           static_cast<unsigned>(primary_.size()), sizeof(RTCRayHit));
            return;
        }
        for (RTCRayHit& query : primary_)
            rtcIntersect1(scene_, &context, &query);
    }

    void occlude() {
        RTCIntersectContext context;
        rtcInitIntersectContext(&context);
        context.flags = RTC_INTERSECT_CONTEXT_FLAG_COHERENT;
        if (streams_) {
            rtcOccluded1M(scene_, &context, shadow_.data(), static_cast<unsigned>(shadow_.size()),
                          sizeof(RTCRay));
            return;
        }
        for (RTCRay& query : shadow_)
            rtcOccluded1(scene_, &context, &query);
    }

    RTCScene scene_;
    const LightSet* rig_;
    bool streams_;
    std::vector<RTCRayHit> primary_;
    std::vector<RTCRay> shadow_;
};

std::uint64_t traceBare(const BareScene& scene, const LightSet& rig, std::size_t threads,
                        bool streams) {
    const View view(benchCamera(), kWidth, kHeight, kSamples);
    const auto pattern = samplePattern(kSamples);
    const auto tiles = tilesOf({0, 0, kWidth, kHeight});
    std::vector<BareRow> rows(threads, BareRow(scene, rig, streams));
    std::atomic<std::uint64_t> rays{0};
    LaneTeam team(threads + 1);
    runLanes(
        team, tiles.size(),
        [&](std::size_t lane, std::size_t tile) {
            for (int y = tiles[tile].top; y < tiles[tile].bottom; ++y)
                rays += rows[lane].trace(view, pattern, tiles[tile].left, tiles[tile].right, y);
        },
        [](std::size_t) { return true; });
    return rays;
}

struct Contender {
    const char* name;
    std::function<std::uint64_t()> run;  ///< returns how many rays it traced
    std::vector<double> seconds{};
    std::uint64_t rays = 0;

    double median() {
        std::sort(seconds.begin(), seconds.end());
        return seconds[seconds.size() / 2];
    }
};

void race(std::vector<Contender>& contenders, int rounds) {
    for (int round = 0; round < rounds; ++round) {
        for (Contender& contender : contenders) {
            const auto start = std::chrono::steady_clock::now();
            contender.rays = contender.run();
            const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - start;
            contender.seconds.push_back(taken.count());
        }
    }
    const double reference = contenders.front().median();
    for (Contender& contender : contenders) {
        std::printf("%-36s %8.3f s  %5.1f million rays  ratio %.2f\n", contender.name,
                    contender.median(), static_cast<double>(contender.rays) * 1e-6,
                    contender.median() / reference);
    }
}

/// What is measured on.
struct Bench {
    Bench(const char* moduleFile, std::size_t threadCount)
        : module(moduleFile),
          threads(threadCount),
          bare(scene, nullptr),
          bareUnfused(scene, kEmbreeDevice),
          renderer(scene) {}

    RenderOptions options() const {
        RenderOptions options;
        options.width = kWidth;
        options.height = kHeight;
        options.samples = kSamples;
        options.threads = static_cast<int>(threads);
        return options;
    }

    Picture render(const RenderOptions& wanted, const std::optional<SurfaceShader>& shader,
                   RenderStats* stats = nullptr) {
        return renderer.render(benchCamera(), rig, SurfaceShaders{shader}, module, wanted, {},
                               stats);
    }

    std::uint64_t rays(const RenderOptions& wanted, const std::optional<SurfaceShader>& shader) {
        RenderStats stats;
        render(wanted, shader, &stats);
        return stats.primaryRays + stats.shadowRays;
    }

    const char* module;
    std::size_t threads;
    Scene scene = benchScene();
    LightSet rig = benchLights();
    BareScene bare;         ///< with the fastest kernels that the processor has
    BareScene bareUnfused;  ///< with those that pictures are made with
    Renderer renderer;
    SurfaceShader look = {.block = newShaderSettings(ModuleCopy(module, findService))};
};

RenderOptions adaptive(RenderOptions options, int least) {
    options.samples = least;
    options.mostSamples = 64;
    return options;
}

/// What the program starts with, and the least with which this scene, which has
/// no faint and thin features, comes out as well as with 64 samples everywhere.
constexpr int kDefaultLeast = 4;
constexpr int kLeast = 1;

enum Entry {
    kStreams,
    kUnfused,
    kRays,
    kPlain,
    kLook,
    kAdaptive,
    kAdaptiveLeast,
    kOneLane,
    kSharedCopy
};

std::vector<Contender> contendersOf(Bench& bench) {
    const RenderOptions even = bench.options();
    RenderOptions oneLane = even;
    oneLane.threads = 1;
    RenderOptions shared = even;
    shared.moduleEachThread = false;
    const auto frame = [&bench](const RenderOptions& options, bool shader) {
        return [&bench, options, shader] {
            return bench.rays(options, shader ? std::optional(bench.look) : std::nullopt);
        };
    };
    const auto alone = [&bench](const BareScene& scene, bool streams) {
        return [&bench, &scene, streams] {
            return traceBare(scene, bench.rig, bench.threads, streams);
        };
    };
    return {{"Embree alone, streams", alone(bench.bare, true)},
            {"Embree alone, streams, unfused", alone(bench.bareUnfused, true)},
            {"Embree alone, ray by ray", alone(bench.bare, false)},
            {"whole frame, plain", frame(even, false)},
            {"whole frame, default look", frame(even, true)},
            {"whole frame, adaptive 4..64", frame(adaptive(even, kDefaultLeast), true)},
            {"whole frame, adaptive 1..64", frame(adaptive(even, kLeast), true)},
            {"whole frame, one lane", frame(oneLane, true)},
            {"whole frame, one copy for all lanes", frame(shared, true)}};
}

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

void printRow(const char* metric, double ours, double reference, const char* unit, double goal,
              bool atMost) {
    const double ratio = ours / reference;
    const bool met = atMost ? ratio <= goal : ratio >= goal;
    std::printf("%s|%.3f %s|%.3f %s|%.2f|%s %.1f|%s\n", metric, ours, unit, reference, unit, ratio,
                atMost ? "at most" : "at least", goal, met ? "yes" : "no");
}

/// Errors in a picture of a third of the size, where steps weigh three times as much.
void printErrors(Bench& bench) {
    RenderOptions options = bench.options();
    options.width /= 3;
    options.height /= 3;
    const Picture usual = bench.render(adaptive(options, kDefaultLeast), bench.look);
    const Picture least = bench.render(adaptive(options, kLeast), bench.look);
    options.samples = 64;
    const Picture even = bench.render(options, bench.look);
    options.samples = 1024;
    const Picture reference = bench.render(options, bench.look);
    const double evenError = meanChannelError(even, reference);
    printRow("mean error, adaptive 1..64, beside 64 samples everywhere",
             meanChannelError(least, reference), evenError, "of 255", 1, true);
    printRow("mean error, adaptive 4..64 (default), beside 64 samples everywhere",
             meanChannelError(usual, reference), evenError, "of 255", 1, true);
}

void run(const char* module, int rounds, std::size_t threads) {
    Bench bench(module, threads);
    std::vector<Contender> contenders = contendersOf(bench);
    race(contenders, rounds);
    const auto taken = [&](Entry entry) { return contenders[entry].median(); };
    printRow("whole frame, 16 samples, beside Embree's streams", taken(kLook), taken(kStreams), "s",
             2.0, true);
    std::printf("the same, beside Embree's streams with the kernels of ours|%.3f s|%.3f s|%.2f||\n",
                taken(kLook), taken(kUnfused), taken(kLook) / taken(kUnfused));
    printRow("adaptive 1..64, beside Embree's streams at 16 samples", taken(kAdaptiveLeast),
             taken(kStreams), "s", 0.8, true);
    printRow("adaptive 4..64 (default), beside Embree's streams at 16 samples", taken(kAdaptive),
             taken(kStreams), "s", 0.8, true);
    printErrors(bench);
    if (threads == 2) {
        printRow("1 lane beside 2", taken(kOneLane), taken(kLook), "s", 1.9, false);
    } else if (threads == 16) {
        printRow("1 lane beside 16", taken(kOneLane), taken(kLook), "s", 14, false);
    }
    std::printf("threads sharing one copy, beside lanes|%.3f s|%.3f s|%.2f||\n", taken(kSharedCopy),
                taken(kLook), taken(kSharedCopy) / taken(kLook));
}

}  // namespace

int main(int count, char** arguments) {
    if (count < 2) {
        std::fprintf(stderr, "usage: frame_bench MODULE [ROUNDS] [THREADS]\n");
        return 2;
    }
    const long rounds = count > 2 ? std::strtol(arguments[2], nullptr, 10) : 5;
    const long threads = count > 3 ? std::strtol(arguments[3], nullptr, 10)
                                   : static_cast<long>(std::thread::hardware_concurrency());
    try {
        run(arguments[1], static_cast<int>(std::max(rounds, 1L)),
            static_cast<std::size_t>(std::max(threads, 1L)));
    } catch (const std::exception& error) {
        std::fprintf(stderr, "frame_bench: %s\n", error.what());
        return 1;
    }
    return 0;
}
