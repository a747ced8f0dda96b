// A whole frame beside Embree alone: the same primary rays, and for each hit a
// shadow ray to each light that its polygon faces, in the same process, in
// turn; medians of the rounds. Prints one line a contender.
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
#include "studio/render/lanes.h"
#include "studio/render/renderer.h"
#include "studio/render/sample_pattern.h"
#include "studio/render/tiles.h"
#include "studio/render/view.h"
#include "studio/services/registry.h"
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

LightRig benchLights() {
    LightRig rig;
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
    explicit BareScene(const Scene& scene)
        : device_(rtcNewDevice(nullptr)), scene_(rtcNewScene(device_)) {
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
    BareRow(const BareScene& scene, const LightRig& rig, bool streams)
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
        for (const LitLight& lit : rig_->lights) {
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
    const LightRig* rig_;
    bool streams_;
    std::vector<RTCRayHit> primary_;
    std::vector<RTCRay> shadow_;
};

std::uint64_t traceBare(const BareScene& scene, const LightRig& rig, std::size_t threads,
                        bool streams) {
    const View view(benchCamera(), kWidth, kHeight, kSamples);
    const auto pattern = samplePattern(kSamples);
    const auto tiles = tilesOf({0, 0, kWidth, kHeight});
    std::vector<BareRow> rows(threads, BareRow(scene, rig, streams));
    std::atomic<std::uint64_t> rays{0};
    runLanes(
        threads, tiles.size(),
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
        std::printf("%-28s %8.3f s  %5.1f million rays  ratio %.2f\n", contender.name,
                    contender.median(), static_cast<double>(contender.rays) * 1e-6,
                    contender.median() / reference);
    }
}

void run(const char* module, int rounds, std::size_t threads) {
    const Scene scene = benchScene();
    const LightRig rig = benchLights();
    const BareScene bare(scene);
    Renderer renderer(scene);
    RenderOptions options;
    options.width = kWidth;
    options.height = kHeight;
    options.samples = kSamples;
    options.threads = static_cast<int>(threads);
    const StateBlock look = newShaderSettings(ModuleCopy(module, findService));
    const auto frame = [&](const std::optional<StateBlock>& shader) {
        RenderStats stats;
        renderer.render(benchCamera(), rig, {{shader}}, module, options, {}, &stats);
        return stats.primaryRays + stats.shadowRays;
    };
    std::vector<Contender> contenders;
    contenders.push_back(
        {"Embree alone, streams", [&] { return traceBare(bare, rig, threads, true); }});
    contenders.push_back(
        {"Embree alone, ray by ray", [&] { return traceBare(bare, rig, threads, false); }});
    contenders.push_back({"whole frame, plain", [&] { return frame(std::nullopt); }});
    contenders.push_back({"whole frame, default look", [&] { return frame(look); }});
    race(contenders, rounds);
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
