#include "studio/app/surface_names.h"

#include <fmt/format.h>
#include <fnmatch.h>

#include "studio/app/usage_error.h"
#include "studio/scene/nearest_name.h"

namespace tavora::studio {

std::vector<std::size_t> matchingSurfaces(const Scene& scene, const std::string& pattern,
                                          const std::string& option) {
    std::vector<std::size_t> matches;
    std::vector<std::string> names;
    for (std::size_t i = 0; i < scene.surfaces.size(); ++i) {
        const std::string& name = scene.surfaces[i].name;
        // A name may hold brackets and stars of its own.
        if (name == pattern) return {i};
        if (::fnmatch(pattern.c_str(), name.c_str(), 0) == 0) matches.push_back(i);
        names.push_back(name);
    }
    if (!matches.empty() || pattern == "*") return matches;
    throw UsageError(fmt::format("{}: no surface \"{}\" in {}{}", option, pattern, scene.path,
                                 nearestNames(pattern, names)));
}

}  // namespace tavora::studio
