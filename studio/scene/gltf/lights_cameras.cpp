#include "studio/scene/gltf/lights_cameras.h"

#include <algorithm>
#include <cmath>
#include <fmt/format.h>

#include "studio/scene/gltf/nodes.h"
#include "studio/util/angle_units.h"
#include "studio/util/deterministic_math.h"
#include "studio/util/json_members.h"
#include "studio/util/text.h"

namespace tavora::studio {
namespace {

using gltf::Json;
using Imath::V3d;

constexpr double kWidestCone = 1.5707963267948966;  // radians from the axis
constexpr double kWidestView = 3.14159;             // radians from edge to edge

LightKind kindOf(gltf::LightType type) {
    if (type == gltf::LightType::Directional) return LightKind::Directional;
    return type == gltf::LightType::Point ? LightKind::Point : LightKind::Spot;
}

/// Properties in the extras of a light, or of its node, that the file format lacks:
/// {"tavora": {"makesHighlights": false, "castsShadow": false, "radius": 0.2, "angle": 0.5}}
class LightExtras {
  public:
    /// `extras`, which may be null, are those of the object at the JSON pointer `pointer`.
    LightExtras(const GltfSource& source, const Json* extras, std::string pointer,
                std::vector<std::string>& warnings)
        : source_(source),
          own_(gltf::ownExtras(extras)),
          pointer_(std::move(pointer)),
          warnings_(warnings) {}

    void readInto(Light& light) {
        readFlag("makesHighlights", light.makesHighlights);
        readFlag("castsShadow", light.castsShadow);
        const bool directional = light.kind == LightKind::Directional;
        readSize("radius", !directional, "a length of a point or spot light, in metres",
                 light.radius);
        double degrees = light.angle / kRadiansPerDegree;
        readSize("angle", directional, "the angle of a directional light, in degrees below 180",
                 degrees);
        light.angle = std::min(degrees, kMaxLightDegrees) * kRadiansPerDegree;
    }

  private:
    void readFlag(const char* name, bool& target) {
        const Json& value = member(own_, name);
        if (value.is_boolean()) {
            target = value.get<bool>();
        } else if (!value.is_null()) {
            ignore(name, "neither true nor false");
        }
    }

    void readSize(const char* name, bool fits, const char* wanted, double& target) {
        const Json& value = member(own_, name);
        const double size = value.is_number() ? value.get<double>() : -1;
        if (fits && size >= 0 && std::isfinite(size)) {
            target = size;
        } else if (!value.is_null()) {
            ignore(name, fmt::format("not {}", wanted));
        }
    }

    void ignore(const char* name, const std::string& why) {
        warnings_.push_back(oneLine(fmt::format("{}: {}/extras/tavora/{} is {} and left out",
                                                source_.path, pointer_, name, why)));
    }

    const GltfSource& source_;
    const Json& own_;
    std::string pointer_;
    std::vector<std::string>& warnings_;
};

}  // namespace

Light readLight(const GltfSource& source, int node, const Imath::M44d& toWorld,
                std::vector<std::string>& warnings) {
    const gltf::Node& holder = gltf::at(source.document.nodes, node);
    const gltf::Light& from = gltf::at(source.document.lights, holder.light);
    Light light;
    light.name = from.name;
    light.kind = kindOf(from.type);
    const Imath::M44d frame = rigid(toWorld);
    light.position = frame.translation();
    frame.multDirMatrix(V3d(0, 0, -1), light.direction);
    for (std::size_t i = 0; i < 3; ++i)
        light.color[static_cast<int>(i)] = static_cast<float>(std::max(from.color[i], 0.0));
    light.intensity = static_cast<float>(std::max(from.intensity, 0.0));
    if (from.range > 0) light.range = static_cast<float>(from.range);
    const double outer = std::clamp(from.outerConeAngle, 0.0, kWidestCone);
    light.outerCosine = deterministic::cos(outer);
    light.innerCosine = deterministic::cos(std::clamp(from.innerConeAngle, 0.0, outer));
    const std::string own = fmt::format("/extensions/KHR_lights_punctual/lights/{}", holder.light);
    LightExtras(source, from.extras, own, warnings).readInto(light);
    LightExtras(source, holder.extras, fmt::format("/nodes/{}", node), warnings).readInto(light);
    return light;
}

Camera readCamera(const GltfSource& source, int index, const Imath::M44d& toWorld) {
    const gltf::Camera& from = gltf::at(source.document.cameras, index);
    Camera camera;
    camera.name = from.name;
    camera.cameraToWorld = rigid(toWorld);
    camera.orthographic = from.type == gltf::CameraType::Orthographic;
    if (camera.orthographic) {
        camera.halfHeight = from.orthographic->ymag;
        camera.aspect = from.orthographic->xmag / from.orthographic->ymag;
    } else {
        camera.verticalFov = from.perspective->yfov;
        camera.aspect = from.perspective->aspectRatio;
    }
    const bool open = camera.orthographic
                          ? camera.halfHeight > 0 && camera.aspect > 0
                          : camera.verticalFov > 0 && camera.verticalFov < kWidestView;
    if (!open || !(camera.aspect >= 0) || !std::isfinite(camera.aspect)) {
        source.fail(fmt::format("camera {} \"{}\" has no usable field of view: repair it", index,
                                shortened(camera.name)));
    }
    return camera;
}

}  // namespace tavora::studio
