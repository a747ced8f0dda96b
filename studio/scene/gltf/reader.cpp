#include "studio/scene/gltf/reader.h"

#include <algorithm>
#include <fmt/format.h>

#include "studio/scene/gltf/accessor.h"
#include "studio/scene/gltf/lacks.h"
#include "studio/scene/gltf/materials.h"
#include "studio/scene/gltf/pose.h"
#include "studio/scene/gltf/source.h"
#include "studio/util/text.h"

namespace tavora::studio {
namespace {

using Json = nlohmann::ordered_json;

constexpr double kMostAmbient = 1000;
constexpr double kLargestScene = 1e18;  // whose square still is a float

AnimationInfo describe(const GltfSource& source, const tinygltf::Animation& animation) {
    AnimationInfo info;
    info.name = animation.name;
    info.channels = animation.channels.size();
    bool known = false;
    for (const tinygltf::AnimationSampler& sampler : animation.samplers) {
        const FloatTable times = readFloats(source, sampler.input, 1, 1);
        if (times.values.empty()) continue;
        const auto [first, last] = std::minmax_element(times.values.begin(), times.values.end());
        const auto start = static_cast<double>(*first);
        info.start = known ? std::min(info.start, start) : start;
        info.end = std::max(info.end, static_cast<double>(*last));
        known = true;
    }
    return info;
}

/// {"tavora": {"ambient": 0.2}} or [r, g, b] in the extras of the scene.
void readAmbient(const GltfSource& source, Scene& scene) {
    const Json::json_pointer place(
        fmt::format("/scenes/{}/extras/tavora/ambient", std::max(source.model.defaultScene, 0)));
    if (!source.document.contains(place)) return;
    const Json& ambient = source.document.at(place);
    const auto level = [](const Json& v) { return v.is_number() && v >= 0 && v <= kMostAmbient; };
    if (level(ambient)) {
        scene.ambient = Imath::V3d(ambient.get<double>());
    } else if (ambient.is_array() && ambient.size() == 3 &&
               std::all_of(ambient.begin(), ambient.end(), level)) {
        scene.ambient = Imath::V3d(ambient[0], ambient[1], ambient[2]);
    } else {
        scene.warnings.push_back(
            fmt::format("{}: {} is neither a level from 0 to {} nor three of them and left out",
                        oneLine(source.path), place.to_string(), kMostAmbient));
    }
}

/// Positions come as floats; transforms may take them to where floats end.
void checkBounds(const GltfSource& source, const Scene& scene) {
    if (scene.bounds.isEmpty()) return;
    const Imath::V3d size = scene.bounds.size();
    if (std::max({size.x, size.y, size.z}) < kLargestScene) return;
    source.fail(fmt::format("is larger than {} metres: scale the model down", kLargestScene));
}

}  // namespace

Scene readGltf(const std::filesystem::path& file) {
    const GltfSource source = readGltfSource(file);
    Scene scene;
    scene.path = source.path;
    readMaterials(source, scene);
    GltfPoser(source).pose(restPose(source), scene);
    checkBounds(source, scene);
    for (const tinygltf::Animation& animation : source.model.animations) {
        scene.animations.push_back(describe(source, animation));
    }
    readAmbient(source, scene);
    tellLacks(source, scene);
    return scene;
}

}  // namespace tavora::studio
