#include <fmt/format.h>

#include "studio/app/describe.h"
#include "studio/setup/report.h"
#include "studio/setup/surface_names.h"
#include "studio/util/angle_units.h"
#include "studio/util/text.h"

namespace tavora::studio {
namespace {

using Json = nlohmann::ordered_json;

std::string textOf(const Surface& surface) {
    std::string text = surface.baseColorTexture ? "textured" : "plain colour";
    text += fmt::format(", {}", nameOf(surface.alphaMode));
    if (surface.doubleSided) text += ", double-sided";
    if (surface.unlit) text += ", unlit";
    if (surface.normalTexture && surface.normalMap) text += ", normal map";
    if (surface.toon) text += ", avatar";
    if (!surface.selfShadow) text += ", no self-shadow";
    if (!surface.castsShadows) text += ", casts no shadows";
    if (!surface.receivesShadows) text += ", receives no shadows";
    if (surface.shader) {
        text += fmt::format(", shader {}{}", surface.shader->server,
                            surface.shader->enabled ? "" : " (off)");
    }
    return text;
}

std::string textOf(const Light& light) {
    std::string text =
        fmt::format("{}, {:.4g} {}, colour {:.3g} {:.3g} {:.3g}", nameOf(light.kind),
                    light.intensity, light.kind == LightKind::Directional ? "lux" : "candela",
                    light.color.x, light.color.y, light.color.z);
    if (light.radius > 0) text += fmt::format(", radius {:.4g} m", light.radius);
    if (light.angle > 0)
        text += fmt::format(", {:.4g} degrees wide", light.angle * kDegreesPerRadian);
    if (!light.castsShadow) text += ", no shadow";
    return text;
}

std::string textOf(const Camera& camera) {
    if (camera.orthographic)
        return fmt::format("orthographic, {:.4g} m high", camera.halfHeight * 2);
    return fmt::format("perspective, {:.4g} degrees high", camera.verticalFov * kDegreesPerRadian);
}

std::string textOf(const AnimationInfo& animation) {
    return fmt::format("{:.4g} s to {:.4g} s, {} channels", animation.start, animation.end,
                       animation.channels);
}

template <class List>
std::string section(const char* title, const List& list, const char* none) {
    if (list.empty()) return fmt::format("{:<11}{}\n", title, none);
    std::string text = fmt::format("{:<11}{}\n", title, list.size());
    std::size_t index = 0;
    for (const auto& entry : list) {
        const auto& item = [&]() -> const auto& {
            if constexpr (requires { *entry; }) {
                return *entry;
            } else {
                return entry;
            }
        }
        ();
        text += fmt::format("{:>9}  {}: {}\n", index++, oneLine(item.name), oneLine(textOf(item)));
    }
    return text;
}

std::vector<const Surface*> surfacesOf(const Scene& scene) {
    std::vector<const Surface*> surfaces;
    for (const std::size_t i : listedSurfaces(scene))
        surfaces.push_back(&scene.surfaces[i]);
    return surfaces;
}

std::string extentsText(const Imath::Box3d& bounds) {
    if (bounds.isEmpty()) return "nothing to see";
    const Imath::V3d size = bounds.size();
    return fmt::format(
        "{:.4g} x {:.4g} x {:.4g} m, from ({:.4g}, {:.4g}, {:.4g}) to ({:.4g}, "
        "{:.4g}, {:.4g})",
        size.x, size.y, size.z, bounds.min.x, bounds.min.y, bounds.min.z, bounds.max.x,
        bounds.max.y, bounds.max.z);
}

std::string moduleText(const Json& module) {
    if (module["file"].is_null()) {
        return fmt::format("{:<11}none: {}\n", "module", module["problem"].get<std::string>());
    }
    std::string text = fmt::format("{:<11}{}, descriptor version {}\n", "module",
                                   module["file"].get<std::string>(), module["descriptor"].dump());
    for (const Json& server : module["classes"]) {
        const auto description = server["description"].get<std::string>();
        text +=
            fmt::format("{:>11}{} \"{}\" version {}{}\n", "", server["class"].get<std::string>(),
                        server["server"].get<std::string>(), server["version"].dump(),
                        description.empty() ? "" : ": " + oneLine(description));
    }
    return text;
}

}  // namespace

std::string sceneText(const Scene& scene, const Json& module) {
    return fmt::format("{:<11}{}\n", "scene", oneLine(scene.path)) +
           fmt::format("{:<11}{}\n", "extents", extentsText(scene.bounds)) +
           fmt::format("{:<11}{} in {} objects\n", "triangles", triangleCount(scene),
                       scene.objects.size()) +
           section("surfaces", surfacesOf(scene), "none") +
           section("lights", scene.lights, "none; a key light is added") +
           section("cameras", scene.cameras, "none; one that frames the scene is added") +
           section("animations", scene.animations, "none") + moduleText(module);
}

}  // namespace tavora::studio
