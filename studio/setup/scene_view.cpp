#include "studio/setup/scene_view.h"

#include <algorithm>
#include <charconv>
#include <fmt/format.h>

#include "studio/scene/framing/default_view.h"
#include "studio/util/error.h"
#include "studio/util/glob.h"
#include "studio/util/nearest_name.h"

namespace tavora::studio {
namespace {

// Whether `text` is a whole number below `count`, which is then stored in `index`.
bool isIndex(const std::string& text, std::size_t count, std::size_t& index) {
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, index);
    return error == std::errc() && stop == end && index < count;
}

bool isDirectional(const ResolvedLight& light) {
    return light.light->kind == LightKind::Directional;
}

/// Throws the Error for a size, of directional lights or of others, whose name `wanted` matches
/// no such light.
[[noreturn]] void refuseSize(const char* option, const std::string& wanted, bool directional,
                             const LightSet& lights) {
    std::vector<std::string> fitting;
    for (const ResolvedLight& light : lights.lights) {
        if (isDirectional(light) == directional) {
            fitting.push_back(light.light->name);
        } else if (matchesName(wanted, light.light->name)) {
            throw Error(
                Fault::Usage,
                fmt::format("{}: the light \"{}\" is {}: give it {}", option, light.light->name,
                            directional ? "not directional" : "directional",
                            directional ? "--light-radius" : "--light-angle"));
        }
    }
    throw Error(Fault::Usage, fmt::format("{}: no {} light \"{}\"{}", option,
                                          directional ? "directional" : "point or spot", wanted,
                                          nearestNames(wanted, fitting)));
}

/// Throws Error for a size whose name matches no light of its kind. A size without a name ("*")
/// is valid without such lights.
void checkSizes(const char* option, const std::vector<LightSize>& sizes, bool directional,
                const LightSet& lights) {
    for (const LightSize& size : sizes) {
        const bool fits = std::any_of(lights.lights.begin(), lights.lights.end(),
                                      [&](const ResolvedLight& light) {
                                          return isDirectional(light) == directional &&
                                                 matchesName(size.lights, light.light->name);
                                      });
        if (!fits && size.lights != "*") refuseSize(option, size.lights, directional, lights);
    }
}

void checkNames(const char* option, const std::vector<std::string>& wanted,
                const std::vector<std::string>& names) {
    for (const std::string& pattern : wanted) {
        const bool fits = std::any_of(names.begin(), names.end(), [&](const std::string& name) {
            return matchesName(pattern, name);
        });
        if (!fits) {
            throw Error(Fault::Usage, fmt::format("{}: no light \"{}\"{}", option, pattern,
                                                  nearestNames(pattern, names)));
        }
    }
}

}  // namespace

LightSet lightsFor(const Scene& scene, const Camera& keyView, const LightingOptions& options,
                   const LightMeter& meter) {
    LightSet lights = resolveLights(scene, keyView, options, meter);
    checkSizes("--light-radius", options.radii, false, lights);
    checkSizes("--light-angle", options.angles, true, lights);
    checkNames("--no-shadows", options.withoutShadows, lightNames(scene));
    return lights;
}

Camera chooseCamera(const Scene& scene, const std::string& choice, double aspect) {
    const std::vector<Camera>& cameras = scene.cameras;
    if (choice.empty()) {
        return cameras.empty() ? framingCamera(scene, aspect) : cameras.front();
    }
    std::vector<std::string> names;
    for (const Camera& camera : cameras) {
        if (camera.name == choice) return camera;
        names.push_back(camera.name);
    }
    std::size_t index = 0;
    if (isIndex(choice, cameras.size(), index)) return cameras[index];
    throw Error(Fault::Usage, fmt::format("--camera: no camera \"{}\" in {}{}", choice, scene.path,
                                          cameras.empty() ? ", which has none; leave --camera out"
                                                          : nearestNames(choice, names)));
}

std::vector<std::string> lightNames(const Scene& scene) {
    if (scene.lights.empty()) return {kKeyLightName};
    std::vector<std::string> names;
    for (const auto& light : scene.lights)
        names.push_back(light->name);
    return names;
}

}  // namespace tavora::studio
