#pragma once

#include <filesystem>

#include "studio/edit/scene_settings.h"

namespace tavora::studio {

/// Writes the surface's settings, or those of a new shader, as a look that readLook()
/// reads, named as the file is, whole or not at all. Throws Error, Fault::Output, and
/// Fault::Scene for values that no look may have.
void saveLook(const SceneSettings& settings, std::size_t surface,
              const std::filesystem::path& file);

}  // namespace tavora::studio
