#include "studio/setup/shading_plan.h"

#include <algorithm>
#include <fmt/format.h>
#include <map>

#include "studio/scene/settings/look.h"
#include "studio/scene/settings/settings.h"
#include "studio/scene/settings/toon_zones.h"
#include "studio/setup/surface_names.h"
#include "studio/util/error.h"
#include "studio/util/nearest_name.h"
#include "studio/util/some_names.h"

namespace tavora::studio {
namespace {

using Json = nlohmann::ordered_json;

constexpr const char* kDefaultLook = "two-tone";
constexpr std::size_t kMaxLightsNamed = 20;  // in warnings

/// Parses a value as typed on the command line: JSON, or a list of JSON values or texts
/// separated by commas, or a text.
Json valueOf(const std::string& text) {
    Json value = Json::parse(text, nullptr, false);
    if (!value.is_discarded()) return value;
    if (text.find(',') == std::string::npos) return text;
    Json list = Json::array();
    for (std::size_t start = 0; start <= text.size();) {
        const std::size_t end = std::min(text.find(',', start), text.size());
        const std::string part = text.substr(start, end - start);
        Json element = Json::parse(part, nullptr, false);
        list.push_back(element.is_discarded() ? Json(part) : element);
        start = end + 1;
    }
    return list;
}

/// Determines the shaders of all surfaces, by steps that are called in order.
class Planner {
  public:
    Planner(const Scene& scene, const ShaderClass& shader, std::span<const std::string> lights,
            Report& report)
        : scene_(scene),
          shader_(shader),
          lights_(lights),
          report_(report),
          planned_(scene.surfaces.size()) {}

    void applyStored() {
        for (std::size_t i = 0; i < planned_.size(); ++i) {
            const Surface& surface = scene_.surfaces[i];
            if (!surface.shader || !hasThisModule(surface)) continue;
            planned_[i] = surface.shader;
            planned_[i]->block = completeBlock(surface);
        }
    }

    /// Avatars without a stored shader get settings that imitate their own shading.
    void applyAvatars() {
        std::map<std::string, std::vector<std::string>> inaccuracies;  // and their surfaces
        for (std::size_t i = 0; i < planned_.size(); ++i) {
            const Surface& surface = scene_.surfaces[i];
            if (planned_[i] || !surface.toon) continue;
            const ToonZones zones = toonZones(scene_, surface);
            planned_[i] = builtInWith(zones.settings, surface.name);
            for (const std::string& what : zones.inexact)
                inaccuracies[what].push_back(surface.name);
        }
        for (const auto& [what, surfaces] : inaccuracies)
            report_.note(1, fmt::format("avatars are met nearly: {} ({})", what, someOf(surfaces)));
    }

    /// Surfaces without a shader get this look.
    void applyDefaultLook(const std::string& name) {
        if (name.empty()) return;
        const SurfaceShader applied = builtInWith(readLook(name));
        for (const std::size_t i : listedSurfaces(scene_)) {
            if (!planned_[i]) planned_[i] = applied;
        }
    }

    void applyLooks(const std::vector<LookChoice>& choices) {
        for (const LookChoice& choice : choices) {
            const SurfaceShader applied = builtInWith(readLook(choice.look));
            for (const std::size_t i : surfacesOf(scene_, choice))
                planned_[i] = applied;
        }
    }

    void applyChanges(const std::vector<SettingChange>& changes) {
        std::vector<Json> collected(planned_.size(), Json::object());
        for (const SettingChange& change : changes) {
            bool applied = false;
            for (const std::size_t i : matchingSurfaces(scene_, change.surfaces, "--set")) {
                if (!planned_[i]) continue;
                collected[i][change.setting] = valueOf(change.value);
                applied = true;
            }
            if (!applied) {
                throw Error(Fault::Usage,
                            fmt::format("--set: \"{}\" has no shader; give it one with --look",
                                        change.surfaces));
            }
        }
        try {
            for (std::size_t i = 0; i < planned_.size(); ++i) {
                if (collected[i].empty()) continue;
                planned_[i]->block =
                    withChanges(planned_[i]->block, collected[i], "--set", lights_);
            }
        } catch (const Error& error) {
            throw Error(Fault::Usage, error.what());
        }
    }

    void removeShaders(const std::vector<std::string>& patterns) {
        for (const std::string& pattern : patterns) {
            for (const std::size_t i : matchingSurfaces(scene_, pattern, "--no-shader"))
                planned_[i].reset();
        }
    }

    void reportUnknownLights() {
        std::map<std::string, std::string> unknown;  // and a surface that names it
        for (std::size_t i = 0; i < planned_.size(); ++i) {
            if (!planned_[i]) continue;
            for (const std::string& name : unknownLights(planned_[i]->block, lights_))
                unknown.try_emplace(name, scene_.surfaces[i].name);
        }
        std::size_t reported = 0;
        for (const auto& [light, surface] : unknown) {
            if (reported++ == kMaxLightsNamed) {
                return report_.warning(fmt::format("{} more lights are not in the scene",
                                                   unknown.size() - kMaxLightsNamed));
            }
            report_.warning(fmt::format("surface \"{}\": its light \"{}\" is not in the scene{}",
                                        surface, light, nearestNames(light, lights_)));
        }
    }

    SurfaceShaders take() { return std::move(planned_); }

  private:
    bool hasThisModule(const Surface& surface) {
        if (surface.shader->server == shader_.server) return true;
        report_.warning(
            fmt::format("surface \"{}\": no module has its shader \"{}\"; it stays plain",
                        surface.name, surface.shader->server));
        return false;
    }

    StateBlock completeBlock(const Surface& surface) {
        try {
            return blockOf(settingsOf(surface.shader->block));
        } catch (const Error& error) {
            report_.warning(fmt::format("surface \"{}\": {}; the built-in settings stand in",
                                        surface.name, error.what()));
            return shader_.builtIn;
        }
    }

    SurfaceShader builtInWith(const Json& changes, const std::string& where) const {
        return {shader_.server, true, withChanges(shader_.builtIn, changes, where, lights_)};
    }

    SurfaceShader builtInWith(const Look& look) const {
        return builtInWith(look.settings, look.name);
    }

    const Scene& scene_;
    const ShaderClass& shader_;
    std::span<const std::string> lights_;
    Report& report_;
    SurfaceShaders planned_;
};

}  // namespace

bool hasAvatars(const Scene& scene) {
    return std::any_of(scene.surfaces.begin(), scene.surfaces.end(),
                       [](const Surface& surface) { return surface.toon.has_value(); });
}

bool storesShaders(const Scene& scene) {
    return std::any_of(scene.surfaces.begin(), scene.surfaces.end(),
                       [](const Surface& surface) { return surface.shader.has_value(); });
}

ShadingRequest withDefaultLook(const Scene& scene, ShadingRequest request, Report& report) {
    if (!request.looks.empty() || storesShaders(scene)) return request;
    request.defaultLook = kDefaultLook;
    const char* where =
        hasAvatars(scene) ? "goes on all surfaces but those of avatars" : "goes on every surface";
    report.note(1, fmt::format("no look given and none stored: {} {}", kDefaultLook, where));
    return request;
}

std::vector<std::size_t> surfacesOf(const Scene& scene, const LookChoice& choice) {
    return matchingSurfaces(scene, choice.surfaces.empty() ? "*" : choice.surfaces, "--look");
}

SurfaceShaders planSurfaces(const Scene& scene, const ShadingRequest& request,
                            const ShaderClass& shader, std::span<const std::string> lightNames,
                            Report& report) {
    Planner planner(scene, shader, lightNames, report);
    planner.applyStored();
    planner.applyAvatars();
    planner.applyDefaultLook(request.defaultLook);
    planner.applyLooks(request.looks);
    planner.applyChanges(request.changes);
    planner.removeShaders(request.plain);
    planner.reportUnknownLights();
    return planner.take();
}

}  // namespace tavora::studio
