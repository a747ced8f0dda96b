#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "studio/scene/scene.h"

namespace tavora::studio {

/// The surfaces that users see, by index: the file's materials, and the default material if
/// there is geometry without a material.
std::vector<std::size_t> listedSurfaces(const Scene& scene);

/// The listed surface with the name `pattern`, or else those that it matches as a glob
/// ("Glass*"), by index; "*" always matches all. When there is none, throws Error,
/// Fault::Usage, whose message starts with `option` and lists similar names.
std::vector<std::size_t> matchingSurfaces(const Scene& scene, const std::string& pattern,
                                          const std::string& option);

}  // namespace tavora::studio
