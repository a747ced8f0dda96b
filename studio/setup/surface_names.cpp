#include "studio/setup/surface_names.h"

#include <algorithm>
#include <fmt/format.h>

#include "studio/util/error.h"
#include "studio/util/glob.h"
#include "studio/util/nearest_name.h"

namespace tavora::studio {
namespace {

bool isUsed(const Scene& scene, std::size_t surface) {
    return std::any_of(scene.objects.begin(), scene.objects.end(), [&](const auto& object) {
        return std::any_of(object->parts.begin(), object->parts.end(), [&](const Part& part) {
            return static_cast<std::size_t>(part.surface) == surface;
        });
    });
}

}  // namespace

std::vector<std::size_t> listedSurfaces(const Scene& scene) {
    std::vector<std::size_t> listed;
    for (std::size_t i = 0; i < scene.surfaces.size(); ++i) {
        if (scene.surfaces[i].materialIndex >= 0 || isUsed(scene, i)) listed.push_back(i);
    }
    return listed;
}

std::vector<std::size_t> matchingSurfaces(const Scene& scene, const std::string& pattern,
                                          const std::string& option) {
    std::vector<std::size_t> matches;
    std::vector<std::string> names;
    for (const std::size_t i : listedSurfaces(scene)) {
        const std::string& name = scene.surfaces[i].name;
        // A surface's name may itself contain brackets and stars, but "*" always means all.
        if (name == pattern && pattern != "*") return {i};
        if (matchesName(pattern, name)) matches.push_back(i);
        names.push_back(name);
    }
    if (!matches.empty() || pattern == "*") return matches;
    throw Error(Fault::Usage, fmt::format("{}: no surface \"{}\" in {}{}", option, pattern,
                                          scene.path, nearestNames(pattern, names)));
}

}  // namespace tavora::studio
