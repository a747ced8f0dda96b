#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "studio/scene/scene.h"

namespace tavora::studio {

/// The surfaces that count, by index: those of the file, and one for geometry
/// without a material when there is such geometry.
std::vector<std::size_t> listedSurfaces(const Scene& scene);

/// The listed surfaces of that name, or else those that the glob ("Glass*") matches,
/// by index; "*" is always all of them. Throws Error, Fault::Usage that opens with `option` and
/// lists near names when there is none.
std::vector<std::size_t> matchingSurfaces(const Scene& scene, const std::string& pattern,
                                          const std::string& option);

}  // namespace tavora::studio
