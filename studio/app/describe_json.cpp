#include <array>

#include "studio/app/describe.h"
#include "studio/link/module_file.h"
#include "studio/services/registry.h"
#include "studio/setup/surface_names.h"
#include "studio/util/angle_units.h"
#include "studio/util/error.h"

namespace tavora::studio {
namespace {

using Json = nlohmann::ordered_json;

Json vectorOf(const Imath::V3d& v) {
    return {v.x, v.y, v.z};
}
Json vectorOf(const Imath::V3f& v) {
    return {v.x, v.y, v.z};
}

Json describe(const Surface& surface) {
    return {{"name", surface.name},
            {"material", surface.materialIndex},
            {"alpha", nameOf(surface.alphaMode)},
            {"doubleSided", surface.doubleSided},
            {"unlit", surface.unlit},
            {"selfShadow", surface.selfShadow},
            {"castsShadows", surface.castsShadows},
            {"receivesShadows", surface.receivesShadows},
            {"normalMap", surface.normalTexture && surface.normalMap},
            {"avatar", surface.toon.has_value()},
            {"textured", surface.baseColorTexture.has_value()},
            {"shader", surface.shader ? Json(surface.shader->server) : Json()},
            {"enabled", surface.shader && surface.shader->enabled}};
}

Json describe(const Light& light) {
    Json json{{"name", light.name},
              {"kind", nameOf(light.kind)},
              {"color", vectorOf(light.color)},
              {"intensity", light.intensity},
              {"castsShadow", light.castsShadow}};
    if (light.kind != LightKind::Directional) json["position"] = vectorOf(light.position);
    if (light.kind != LightKind::Point) json["direction"] = vectorOf(light.direction);
    if (light.kind == LightKind::Directional) {
        json["angleDegrees"] = light.angle * kDegreesPerRadian;
    } else {
        json["radius"] = light.radius;
    }
    return json;
}

Json describe(const Camera& camera) {
    Json json{{"name", camera.name},
              {"kind", camera.orthographic ? "orthographic" : "perspective"}};
    if (camera.orthographic) {
        json["halfHeight"] = camera.halfHeight;
    } else {
        json["verticalDegrees"] = camera.verticalFov * kDegreesPerRadian;
    }
    return json;
}

Json describe(const AnimationInfo& animation) {
    return {{"name", animation.name},
            {"start", animation.start},
            {"end", animation.end},
            {"channels", animation.channels}};
}

Json describe(const ModuleSummary::Class& server) {
    return {{"class", server.className},
            {"server", server.serverName},
            {"version", server.version},
            {"description", server.description}};
}

template <class List>
Json describeAll(const List& list) {
    Json all = Json::array();
    for (const auto& entry : list) {
        if constexpr (requires { *entry; }) {
            all.push_back(describe(*entry));
        } else {
            all.push_back(describe(entry));
        }
    }
    return all;
}

}  // namespace

const char* nameOf(AlphaMode mode) {
    constexpr std::array<const char*, 3> kNames{"opaque", "mask", "blend"};
    return kNames[static_cast<std::size_t>(mode)];
}

const char* nameOf(LightKind kind) {
    constexpr std::array<const char*, 3> kNames{"directional", "point", "spot"};
    return kNames[static_cast<std::size_t>(kind)];
}

std::size_t triangleCount(const Scene& scene) {
    std::size_t count = 0;
    for (const auto& object : scene.objects) {
        for (const Part& part : object->parts)
            count += part.mesh->triangles.size();
    }
    return count;
}

Json describeModule(const std::string& option) {
    try {
        const ModuleSummary summary = summarize(findModule(option), findService);
        return {{"file", summary.file.string()},
                {"descriptor", summary.descriptorVersion},
                {"classes", describeAll(summary.classes)}};
    } catch (const Error& error) {
        return {{"file", nullptr}, {"problem", error.what()}};
    }
}

Json sceneJson(const Scene& scene, const Json& module) {
    Json json{{"scene", scene.path},
              {"triangles", triangleCount(scene)},
              {"objects", scene.objects.size()}};
    json["extents"] = scene.bounds.isEmpty() ? Json()
                                             : Json{{"min", vectorOf(scene.bounds.min)},
                                                    {"max", vectorOf(scene.bounds.max)}};
    json["surfaces"] = Json::array();
    for (const std::size_t i : listedSurfaces(scene)) {
        json["surfaces"].push_back(describe(scene.surfaces[i]));
    }
    json["lights"] = describeAll(scene.lights);
    json["cameras"] = describeAll(scene.cameras);
    json["animations"] = describeAll(scene.animations);
    json["module"] = module;
    return json;
}

}  // namespace tavora::studio
