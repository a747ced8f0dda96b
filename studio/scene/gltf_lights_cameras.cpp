#include "studio/scene/gltf_lights_cameras.h"

#include <algorithm>
#include <cmath>
#include <fmt/format.h>

#include "studio/scene/gltf_accessor.h"
#include "studio/scene/gltf_nodes.h"

namespace tavora::studio {
namespace {

using Imath::V3d;
using Json = nlohmann::ordered_json;

constexpr double kWidestCone = 1.5707963267948966;  // radians from the axis
constexpr double kWidestView = 3.14159;             // radians from edge to edge

LightKind kindOf(const GltfSource& source, const tinygltf::Light& light, int index) {
    if (light.type == "directional") return LightKind::Directional;
    if (light.type == "point") return LightKind::Point;
    if (light.type == "spot") return LightKind::Spot;
    source.fail(
        fmt::format("light {} \"{}\" is of the type \"{}\": make it point, spot or "
                    "directional",
                    index, light.name, light.type));
}

/// {"tavora": {"makesHighlights": false}} in the extras of what `place` points to.
void readHighlights(const GltfSource& source, const std::string& place, Light& light,
                    std::vector<std::string>& warnings) {
    const Json::json_pointer flag(place + "/extras/tavora/makesHighlights");
    if (!source.document.contains(flag)) return;
    const Json& value = source.document.at(flag);
    if (value.is_boolean()) {
        light.makesHighlights = value.get<bool>();
        return;
    }
    warnings.push_back(oneLine(fmt::format("{}: {} is neither true nor false and left out",
                                           source.path, flag.to_string())));
}

}  // namespace

Light readLight(const GltfSource& source, int index, int node, const Imath::M44d& toWorld,
                std::vector<std::string>& warnings) {
    const tinygltf::Light& from = element(source, source.model.lights, index, "light");
    Light light;
    light.name = from.name;
    light.kind = kindOf(source, from, index);
    const Imath::M44d frame = rigid(toWorld);
    light.position = frame.translation();
    frame.multDirMatrix(V3d(0, 0, -1), light.direction);
    for (std::size_t i = 0; i < from.color.size() && i < 3; ++i)
        light.color[static_cast<int>(i)] = static_cast<float>(std::max(from.color[i], 0.0));
    light.intensity = static_cast<float>(std::max(from.intensity, 0.0));
    if (from.range > 0) light.range = static_cast<float>(from.range);
    const double outer = std::clamp(from.spot.outerConeAngle, 0.0, kWidestCone);
    light.outerCone = static_cast<float>(outer);
    light.innerCone = static_cast<float>(std::clamp(from.spot.innerConeAngle, 0.0, outer));
    readHighlights(source, fmt::format("/extensions/KHR_lights_punctual/lights/{}", index), light,
                   warnings);
    readHighlights(source, fmt::format("/nodes/{}", node), light, warnings);
    return light;
}

Camera readCamera(const GltfSource& source, int index, const Imath::M44d& toWorld) {
    const tinygltf::Camera& from = element(source, source.model.cameras, index, "camera");
    Camera camera;
    camera.name = from.name;
    camera.cameraToWorld = rigid(toWorld);
    camera.orthographic = from.type == "orthographic";
    if (camera.orthographic) {
        camera.halfHeight = from.orthographic.ymag;
        camera.aspect = from.orthographic.xmag / from.orthographic.ymag;
    } else {
        camera.verticalFov = from.perspective.yfov;
        camera.aspect = from.perspective.aspectRatio;
    }
    const bool open = camera.orthographic
                          ? camera.halfHeight > 0 && camera.aspect > 0
                          : camera.verticalFov > 0 && camera.verticalFov < kWidestView;
    if (!open || !(camera.aspect >= 0) || !std::isfinite(camera.aspect)) {
        source.fail(fmt::format("camera {} \"{}\" has no usable field of view: repair it", index,
                                camera.name));
    }
    return camera;
}

}  // namespace tavora::studio
