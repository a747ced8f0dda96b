#include "studio/app/scene_view.h"

#include <algorithm>
#include <charconv>
#include <fmt/format.h>

#include "studio/app/usage_error.h"
#include "studio/scene/default_view.h"
#include "studio/scene/nearest_name.h"

namespace tavora::studio {
namespace {

// Whether `text` is a whole number below `count`.
bool isIndex(const std::string& text, std::size_t count, std::size_t& index) {
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, index);
    return error == std::errc() && stop == end && index < count;
}

}  // namespace

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
    throw UsageError(fmt::format(
        "--camera: no camera \"{}\" in {}{}", choice, scene.path,
        cameras.empty() ? ", which has none; leave --camera out" : nearestNames(choice, names)));
}

std::vector<std::string> lightNames(const LightRig& rig) {
    std::vector<std::string> names;
    for (const LitLight& light : rig.lights)
        names.push_back(light.light->name);
    return names;
}

}  // namespace tavora::studio
