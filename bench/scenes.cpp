#include "bench/scenes.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <stdexcept>

#include <nlohmann/json.hpp>

#include "studio/link/module_copy.h"
#include "studio/link/shader.h"
#include "studio/scene/framing/default_view.h"
#include "studio/scene/gltf/reader.h"
#include "studio/scene/settings/settings.h"
#include "studio/services/registry.h"
#include "tests/render/test_scene.h"

namespace tavora::bench {
namespace {

using namespace studio;
using Imath::M44d;
using Imath::V3d;

constexpr int kLamps = 100;                        // of "many lights"
constexpr std::array<int, 2> kListedLamps{9, 24};  // that the light list names

void addObject(Scene& scene, std::shared_ptr<const Mesh> mesh, const M44d& place) {
    auto object = std::make_unique<Object>();
    object->objectToWorld = place;
    object->parts.push_back({std::move(mesh), 0, 0});
    scene.objects.push_back(std::move(object));
}

void addFloor(Scene& scene, float halfSide) {
    auto floor = std::make_shared<Mesh>();
    floor->positions = {{-halfSide, 0, halfSide},
                        {halfSide, 0, halfSide},
                        {halfSide, 0, -halfSide},
                        {-halfSide, 0, -halfSide}};
    floor->normals.assign(4, {0, 1, 0});
    floor->triangles = {{0, 1, 2}, {0, 2, 3}};
    addObject(scene, std::move(floor), {});
}

/// Looks down from `eye` by that many radians, towards -z.
Camera cameraAt(const V3d& eye, double downward) {
    Camera camera;
    camera.verticalFov = 0.7;
    camera.cameraToWorld = M44d().rotate(V3d(-downward, 0, 0)) * M44d().translate(eye);
    return camera;
}

Light& addLight(LightSet& lights, LightKind kind, double level) {
    auto light = std::make_unique<Light>();
    Light& added = *light;
    added.name = "light " + std::to_string(lights.lights.size());
    added.kind = kind;
    lights.lights.push_back({light.get(), V3d(level), 1});
    lights.own.push_back(std::move(light));
    return added;
}

void addSun(LightSet& lights, const V3d& direction, double level) {
    addLight(lights, LightKind::Directional, level).direction = direction.normalized();
}

void addLamp(LightSet& lights, const V3d& position, double level) {
    addLight(lights, LightKind::Point, level).position = position;
}

void addSpot(LightSet& lights, const V3d& position, const V3d& target, double level) {
    Light& spot = addLight(lights, LightKind::Spot, level);
    spot.position = position;
    spot.direction = (target - position).normalized();
    spot.innerCosine = std::cos(0.35);
    spot.outerCosine = std::cos(0.5);
}

/// The shader of a new surface, with `changes` to its settings.
SurfaceShader newShader(const BenchScene& bench, const SceneFiles& files,
                        const nlohmann::ordered_json& changes = nlohmann::ordered_json::object()) {
    std::vector<std::string> names;
    for (const ResolvedLight& resolved : bench.lights.lights)
        names.push_back(resolved.light->name);
    const StateBlock block = newShaderSettings(ModuleCopy(files.module, findService));
    return {.block = withChanges(block, changes, bench.name, names)};
}

/// A new surface's shader on all; on those with a texture it shows that, shaded.
void shadeModels(BenchScene& bench, const SceneFiles& files) {
    const SurfaceShader plain = newShader(bench, files);
    const SurfaceShader textured = newShader(bench, files, {{"colorTextureUse", "Shaded"}});
    for (const Surface& surface : bench.scene.surfaces)
        bench.shaders.push_back(surface.baseColorTexture ? textured : plain);
}

void countAllLights(BenchScene& bench) {
    for (const ResolvedLight& resolved : bench.lights.lights) {
        if (resolved.castsShadow) bench.countedLights.push_back(resolved.light);
    }
}

/// A grid of spheres on a floor, 192,000 triangles, beneath three directional lights.
BenchScene sunsScene(const SceneFiles& files) {
    BenchScene bench;
    bench.scene.surfaces.resize(1);
    const auto ball = sphereMesh(1, 64, 31);
    for (int z = 0; z < 5; ++z) {
        for (int x = 0; x < 10; ++x)
            addObject(bench.scene, ball, M44d().translate(V3d(2.2 * x - 9.9, 1, -2.2 * z)));
    }
    addFloor(bench.scene, 30);
    bench.camera = cameraAt({0, 7, 12}, 0.4);
    for (const V3d& direction : {V3d(0.5, -1, -0.5), V3d(-0.8, -1, -0.3), V3d(0, -1, 0.4)})
        addSun(bench.lights, direction, 0.4);
    bench.lights.ambient = V3d(0.1);
    bench.shaders = {newShader(bench, files)};
    countAllLights(bench);
    return bench;
}

/// Spheres of several sizes, 200,000 triangles, along a spiral on a floor: some overlap, all
/// are a little sunk in the floor.
BenchScene heapScene() {
    BenchScene bench;
    bench.scene.surfaces.resize(1);
    const auto ball = sphereMesh(1, 50, 21);
    for (int i = 0; i < 100; ++i) {
        const double radius = 0.6 + 0.1 * (i * 5 % 7);
        const double away = 1.05 * std::sqrt(i);
        const V3d centre(away * std::cos(2.4 * i), 0.8 * radius, away * std::sin(2.4 * i));
        addObject(bench.scene, ball, M44d().scale(V3d(radius)) * M44d().translate(centre));
    }
    addFloor(bench.scene, 30);
    bench.camera = cameraAt({0, 8, 15}, 0.5);
    bench.lights.ambient = V3d(0.1);
    return bench;
}

/// The heap beneath a sun, with a lamp among the spheres and one above them.
BenchScene lampsScene(const SceneFiles& files) {
    BenchScene bench = heapScene();
    addSun(bench.lights, {-0.6, -1, -0.5}, 0.3);
    addLamp(bench.lights, {1, 1.4, 0}, 0.4);
    addLamp(bench.lights, {-3.5, 3.4, 2}, 0.4);
    bench.shaders = {newShader(bench, files)};
    countAllLights(bench);
    return bench;
}

/// The heap with lamps spread over it, two of which the surfaces' settings name.
BenchScene manyLightsScene(const SceneFiles& files) {
    BenchScene bench = heapScene();
    for (int i = 0; i < kLamps; ++i) {
        const double away = std::sqrt(i);
        addLamp(bench.lights,
                {away * std::cos(2.4 * i + 1), 2.2 + 0.4 * (i % 5), away * std::sin(2.4 * i + 1)},
                0.5);
    }
    nlohmann::ordered_json listed = nlohmann::ordered_json::array();
    for (const int lamp : kListedLamps) {
        const Light& light = *bench.lights.lights[static_cast<std::size_t>(lamp)].light;
        listed.push_back(light.name);
        bench.countedLights.push_back(&light);
    }
    bench.shaders = {newShader(bench, files, {{"useAllLights", false}, {"lightList", listed}})};
    return bench;
}

void shiftImage(std::optional<TextureUse>& use, int by) {
    if (use) use->image += by;
}

void shiftImages(Surface& surface, int by) {
    for (std::optional<TextureUse>* use : {&surface.baseColorTexture, &surface.emissiveTexture,
                                           &surface.normalTexture, &surface.translucencyTexture})
        shiftImage(*use, by);
    if (surface.toon) shiftImage(surface.toon->shadeTexture, by);
}

/// Adds all objects of `model` with their surfaces and images, as moved by `place`.
void addModel(Scene& scene, const Scene& model, const M44d& place) {
    const auto firstImage = static_cast<int>(scene.images.size());
    const auto firstSurface = static_cast<int>(scene.surfaces.size());
    scene.images.insert(scene.images.end(), model.images.begin(), model.images.end());
    for (Surface surface : model.surfaces) {
        shiftImages(surface, firstImage);
        scene.surfaces.push_back(std::move(surface));
    }
    for (const auto& object : model.objects) {
        auto moved = std::make_unique<Object>(*object);
        moved->objectToWorld = object->objectToWorld * place;
        for (Part& part : moved->parts)
            part.surface += firstSurface;
        scene.objects.push_back(std::move(moved));
    }
}

/// A model's file, how large it is shown and where the middle of its base stands.
struct Exhibit {
    const char* file;
    double size;  ///< longest side of its bounds
    V3d base;
};

M44d placeOf(const Scene& model, const Exhibit& exhibit) {
    const V3d extent = model.bounds.size();
    const double scale = exhibit.size / std::max({extent.x, extent.y, extent.z});
    const V3d middle = model.bounds.center();
    const V3d base(middle.x, model.bounds.min.y, middle.z);
    return M44d().translate(-base) * M44d().scale(V3d(scale)) * M44d().translate(exhibit.base);
}

/// Files made by others on a floor: textured, flatly coloured, cut out by masks, and behind
/// them, and before some of them, panes that let light through.
BenchScene modelsScene(const SceneFiles& files) {
    if (!is_directory(files.models)) {
        throw std::runtime_error("scene models: " +
                                 (files.models.empty() ? "no folder of models is named"
                                                       : files.models.string() + " is no folder") +
                                 "; name one with --models or TAVORA_MODELS");
    }
    BenchScene bench;
    bench.scene.surfaces.resize(1);
    addFloor(bench.scene, 15);
    const std::array<Exhibit, 6> exhibits{{{"CesiumMilkTruck.glb", 4, {-2.8, 0, -1}},
                                           {"ambulance/model.gltf", 3, {2.8, 0, -1}},
                                           {"Knight.glb", 2.4, {0, 0, 0}},
                                           {"Suzanne.glb", 1.6, {3.4, 0, 1.5}},
                                           {"AlphaBlendModeTest.glb", 9, {0, 0, -4}},
                                           {"AlphaBlendModeTest.glb", 5, {-1, 0, 2}}}};
    for (const Exhibit& exhibit : exhibits) {
        const Scene model = readGltf(files.models / exhibit.file);
        addModel(bench.scene, model, placeOf(model, exhibit));
    }
    bench.camera = cameraAt({0.4, 3, 7.5}, 0.25);
    addSun(bench.lights, {0.5, -1, -0.6}, 0.4);
    addSpot(bench.lights, {-5, 6, 4}, {-2, 0.5, -1}, 0.4);
    addSpot(bench.lights, {5, 5, 5}, {1.5, 0.5, 0}, 0.4);
    bench.lights.ambient = V3d(0.1);
    shadeModels(bench, files);
    countAllLights(bench);
    return bench;
}

/// A file as it is, but for the size of its lights; where it keeps no shaders, with those of
/// new surfaces.
BenchScene fileScene(const std::string& file, const SceneFiles& files, double aspect) {
    BenchScene bench;
    bench.name = file;
    bench.scene = readGltf(file);
    bench.camera = bench.scene.cameras.empty() ? framingCamera(bench.scene, aspect)
                                               : bench.scene.cameras.front();
    LightingOptions options;
    options.radii = options.angles = {{"*", 0}};
    bench.lights = resolveLights(bench.scene, bench.camera, options);
    for (const Surface& surface : bench.scene.surfaces)
        bench.shaders.push_back(surface.shader);
    const auto isShaded = [](const auto& shader) { return shader.has_value(); };
    if (std::none_of(bench.shaders.begin(), bench.shaders.end(), isShaded)) {
        bench.shaders.clear();
        shadeModels(bench, files);
    }
    countAllLights(bench);
    return bench;
}

using MakeScene = BenchScene (*)(const SceneFiles&);

constexpr std::array<std::pair<const char*, MakeScene>, 4> kScenes{
    {{"suns", sunsScene},
     {"lamps", lampsScene},
     {"models", modelsScene},
     {"many lights", manyLightsScene}}};

}  // namespace

const std::vector<std::string>& sceneNames() {
    static const std::vector<std::string> names = [] {
        std::vector<std::string> all;
        for (const auto& [name, make] : kScenes)
            all.emplace_back(name);
        return all;
    }();
    return names;
}

BenchScene makeScene(const std::string& nameOrFile, const SceneFiles& files, double aspect) {
    for (const auto& [name, make] : kScenes) {
        if (name != nameOrFile) continue;
        BenchScene bench = make(files);
        bench.name = name;
        return bench;
    }
    if (!std::filesystem::path(nameOrFile).has_extension())
        throw std::runtime_error(nameOrFile + " is no scene and no glTF file");
    return fileScene(nameOrFile, files, aspect);
}

}  // namespace tavora::bench
