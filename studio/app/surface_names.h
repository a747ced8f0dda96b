#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "studio/scene/scene.h"

namespace tavora::studio {

/// The surfaces of that name, or else those that the glob ("Glass*") matches,
/// by index. Throws UsageError that opens with `option` and lists near names
/// when there is none.
std::vector<std::size_t> matchingSurfaces(const Scene& scene, const std::string& pattern,
                                          const std::string& option);

}  // namespace tavora::studio
