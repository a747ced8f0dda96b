#include "studio/scene/gltf/lights_cameras.h"

#include <algorithm>
#include <cmath>
#include <fmt/format.h>

#include "studio/scene/gltf/accessor.h"
#include "studio/scene/gltf/nodes.h"
#include "studio/util/angle_units.h"
#include "studio/util/portable_math.h"
#include "studio/util/text.h"

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

/// What the extras of a light, or of its node, say of it beyond the file format:
/// {"tavora": {"makesHighlights": false, "castsShadow": false, "radius": 0.2, "angle": 0.5}}
class LightExtras {
  public:
    /// `place` points to what holds the extras.
    LightExtras(const GltfSource& source, const std::string& place,
                std::vector<std::string>& warnings)
        : source_(source), place_(place + "/extras/tavora"), warnings_(warnings) {}

    void readInto(Light& light) {
        if (const Json* flag = member("makesHighlights")) readFlag(*flag, light.makesHighlights);
        if (const Json* flag = member("castsShadow")) readFlag(*flag, light.castsShadow);
        const bool sun = light.kind == LightKind::Directional;
        if (const Json* size = member("radius")) {
            readSize(*size, !sun, "a length of a point or spot light, in metres", light.radius);
        }
        double degrees = light.angle / kRadiansPerDegree;
        if (const Json* size = member("angle")) {
            readSize(*size, sun, "the angle of a directional light, in degrees below 180", degrees);
        }
        light.angle = std::min(degrees, kWidestSunDegrees) * kRadiansPerDegree;
    }

  private:
    const Json* member(const char* name) {
        member_ = place_ / name;
        return source_.document.contains(member_) ? &source_.document.at(member_) : nullptr;
    }

    void readFlag(const Json& value, bool& target) {
        if (value.is_boolean()) {
            target = value.get<bool>();
        } else {
            leaveOut("neither true nor false");
        }
    }

    void readSize(const Json& value, bool fits, const char* wanted, double& target) {
        const double size = value.is_number() ? value.get<double>() : -1;
        if (fits && size >= 0 && std::isfinite(size)) {
            target = size;
        } else {
            leaveOut(fmt::format("not {}", wanted));
        }
    }

    void leaveOut(const std::string& why) {
        warnings_.push_back(oneLine(
            fmt::format("{}: {} is {} and left out", source_.path, member_.to_string(), why)));
    }

    const GltfSource& source_;
    Json::json_pointer place_;
    Json::json_pointer member_;
    std::vector<std::string>& warnings_;
};

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
    light.outerCosine = portable::cos(outer);
    light.innerCosine = portable::cos(std::clamp(from.spot.innerConeAngle, 0.0, outer));
    const std::string own = fmt::format("/extensions/KHR_lights_punctual/lights/{}", index);
    LightExtras(source, own, warnings).readInto(light);
    LightExtras(source, fmt::format("/nodes/{}", node), warnings).readInto(light);
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
