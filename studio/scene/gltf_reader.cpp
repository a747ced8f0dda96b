#include "studio/scene/gltf_reader.h"

#include <algorithm>

#include "studio/scene/gltf_accessor.h"
#include "studio/scene/gltf_materials.h"
#include "studio/scene/gltf_pose.h"
#include "studio/scene/gltf_source.h"

namespace tavora::studio {
namespace {

using Json = nlohmann::ordered_json;

AnimationInfo describe(const GltfSource& source, const tinygltf::Animation& animation) {
    AnimationInfo info;
    info.name = animation.name;
    info.channels = animation.channels.size();
    for (const tinygltf::AnimationSampler& sampler : animation.samplers) {
        const FloatTable times = readFloats(source, sampler.input, 1, 1);
        if (times.values.empty()) continue;
        const auto [first, last] = std::minmax_element(times.values.begin(), times.values.end());
        info.start = std::min(info.start, static_cast<double>(*first));
        info.end = std::max(info.end, static_cast<double>(*last));
    }
    return info;
}

/// {"tavora": {"ambient": 0.2}} or [r, g, b] in the extras of the scene.
void readAmbient(const GltfSource& source, Scene& scene) {
    const Json pointer = source.document.value("/scenes"_json_pointer, Json::array());
    const auto index = static_cast<std::size_t>(std::max(source.model.defaultScene, 0));
    if (!pointer.is_array() || index >= pointer.size() || !pointer[index].is_object()) return;
    const Json ambient = pointer[index].value("/extras/tavora/ambient"_json_pointer, Json());
    if (ambient.is_number()) scene.ambient = Imath::V3d(ambient.get<double>());
    if (ambient.is_array() && ambient.size() == 3 &&
        std::all_of(ambient.begin(), ambient.end(), [](const Json& v) { return v.is_number(); })) {
        scene.ambient = Imath::V3d(ambient[0], ambient[1], ambient[2]);
    }
}

}  // namespace

Scene readGltf(const std::filesystem::path& file) {
    const GltfSource source = readGltfSource(file);
    Scene scene;
    scene.path = source.path;
    readMaterials(source, scene);
    poseAtRest(source, scene);
    for (const tinygltf::Animation& animation : source.model.animations) {
        scene.animations.push_back(describe(source, animation));
    }
    readAmbient(source, scene);
    return scene;
}

}  // namespace tavora::studio
