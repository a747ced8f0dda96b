// What a frame of a film costs beside its rendering: posing the scene and bringing
// the acceleration structure up to date, beside building it anew. For a skinned
// tube of 200,000 triangles, a crowd of parts that move as wholes, and the scenes
// that are named; medians of the frames. Prints what scripts/bench reads:
// metric|ours|reference|ratio|goal|met.
//
//   film_bench [SCENE...]

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <string>
#include <vector>

#include "studio/render/final/renderer.h"
#include "studio/render/trace/ray_scene.h"
#include "studio/services/scene_index.h"
#include "studio/setup/film_scene.h"
#include "tests/scene/gltf_builder.h"

namespace {

using namespace tavora::studio;
using Clock = std::chrono::steady_clock;

constexpr int kFrames = 9;

double secondsSince(Clock::time_point start) {
    return std::chrono::duration<double>(Clock::now() - start).count();
}

double median(std::vector<double> values) {
    std::nth_element(values.begin(),
                     values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2), values.end());
    return values[values.size() / 2];
}

/// A tube along y of `rings` x `sides` vertices, twice as many triangles.
Json tube(GltfBuilder& file, std::uint32_t rings, std::uint32_t sides, bool skinned) {
    std::vector<float> positions;
    std::vector<float> normals;
    std::vector<float> weights;
    std::vector<std::uint16_t> joints;
    std::vector<std::uint32_t> indices;
    for (std::uint32_t r = 0; r < rings; ++r) {
        const float height = 4 * static_cast<float>(r) / static_cast<float>(rings - 1);
        for (std::uint32_t s = 0; s < sides; ++s) {
            const float angle = 6.2831853F * static_cast<float>(s) / static_cast<float>(sides);
            const float x = std::cos(angle);
            const float z = std::sin(angle);
            const float radius = 0.5F + 0.1F * std::sin(9 * height) * std::cos(5 * angle);
            positions.insert(positions.end(), {x * radius, height, z * radius});
            normals.insert(normals.end(), {x, 0, z});
            const auto joint = static_cast<std::uint16_t>(std::min(height, 2.999F));
            const float share = std::min(height, 2.999F) - static_cast<float>(joint);
            joints.insert(joints.end(), {joint, static_cast<std::uint16_t>(joint + 1), 0, 0});
            weights.insert(weights.end(), {1 - share, share, 0, 0});
            if (r + 1 == rings) continue;
            const std::uint32_t a = r * sides + s;
            const std::uint32_t b = r * sides + (s + 1) % sides;
            indices.insert(indices.end(), {a, a + sides, b, b, a + sides, b + sides});
        }
    }
    Json attributes = {{"POSITION", file.accessor(positions, "VEC3")},
                       {"NORMAL", file.accessor(normals, "VEC3")}};
    if (skinned) {
        attributes["JOINTS_0"] = file.accessor(joints, "VEC4");
        attributes["WEIGHTS_0"] = file.accessor(weights, "VEC4");
    }
    return {{"mesh", file.mesh(attributes, {{"indices", file.accessor(indices, "SCALAR")}})}};
}

/// Turns nodes to and fro over a second.
void sway(GltfBuilder& file, const std::vector<int>& nodes) {
    const int times = file.accessor<float>({0, 0.5F, 1}, "SCALAR");
    const int turns = file.accessor<float>(
        {0, 0, 0.1F, 0.995F, 0.1F, 0, -0.1F, 0.99F, 0, 0, 0.1F, 0.995F}, "VEC4");
    Json channels = Json::array();
    for (const int node : nodes)
        channels.push_back({{"sampler", 0}, {"target", {{"node", node}, {"path", "rotation"}}}});
    file.add("animations", {{"channels", channels},
                            {"samplers", Json::array({{{"input", times}, {"output", turns}}})}});
}

GltfBuilder skinnedTube() {
    GltfBuilder file;
    Json body = tube(file, 501, 200, true);
    body["skin"] = 0;
    file.root(body);
    std::vector<int> joints;
    for (int i = 0; i < 5; ++i)
        joints.push_back(file.root({{"name", "joint"}}));
    file.document["skins"] = Json::array({{{"joints", joints}}});
    sway(file, joints);
    return file;
}

GltfBuilder crowd() {
    GltfBuilder file;
    std::vector<int> nodes;
    for (int i = 0; i < 40; ++i) {
        Json body = tube(file, 51, 50, false);
        body["translation"] = {1.5 * (i % 8), 0, -1.5 * (i / 8)};
        nodes.push_back(file.root(body));
    }
    sway(file, nodes);
    return file;
}

struct Costs {
    std::vector<double> pose;
    std::vector<double> update;
    std::vector<double> render;
    std::vector<double> build;
};

RenderOptions options() {
    RenderOptions options;
    options.width = 640;
    options.height = 360;
    options.samples = 4;
    options.maxSamples = 64;
    options.background = Imath::V3d(0.9);
    return options;
}

Costs measure(const std::filesystem::path& file) {
    Report report{ReportOptions{}};
    FilmScene film(file, {});
    film.play({}, report);
    film.prepare({}, 16.0 / 9);
    Renderer renderer(film.scene(), SceneUse::Film);
    const SurfaceShaders plain(film.scene().surfaces.size());
    const RenderWatch watch{[](double) {}, nullptr};
    Costs costs;
    for (int frame = 0; frame <= kFrames; ++frame) {
        const double share = static_cast<double>(frame) / kFrames;
        auto start = Clock::now();
        film.pose(film.range().start + share * (film.range().end - film.range().start));
        costs.pose.push_back(secondsSince(start));
        start = Clock::now();
        renderer.update();
        costs.update.push_back(secondsSince(start));
        start = Clock::now();
        renderer.render(film.camera(), film.lights({}), plain, {}, options(), watch, nullptr);
        costs.render.push_back(secondsSince(start));
        const SceneIndex index(film.scene());
        start = Clock::now();
        const RayScene anew(index);
        costs.build.push_back(secondsSince(start));
    }
    // The first frame makes what the others find.
    for (std::vector<double>* each : {&costs.pose, &costs.update, &costs.render, &costs.build})
        each->erase(each->begin());
    return costs;
}

void printRow(const std::string& metric, double ours, double reference, double goal) {
    std::printf("%s|%.1f ms|%.1f ms|%.3f|at most %g|%s\n", metric.c_str(), ours * 1e3,
                reference * 1e3, ours / reference, goal, ours <= goal * reference ? "yes" : "no");
}

void printRows(const std::string& name, const std::filesystem::path& file) {
    const Costs costs = measure(file);
    const double update = median(costs.update);
    const double render = median(costs.render);
    printRow("refit: " + name, update, median(costs.build), 0.2);
    printRow("frame with its posing: " + name, median(costs.pose) + update + render,
             update + render, 1.05);
}

}  // namespace

int main(int count, char** arguments) {
    try {
        const TemporaryFolder first;
        const TemporaryFolder second;
        printRows("skinned tube", skinnedTube().write(first));
        printRows("crowd of parts", crowd().write(second));
        for (int i = 1; i < count; ++i)
            printRows(std::filesystem::path(arguments[i]).stem().string(), arguments[i]);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "film_bench: %s\n", error.what());
        return 1;
    }
    return 0;
}
