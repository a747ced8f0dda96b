#pragma once

#include <filesystem>

#include "studio/scene/settings/settings.h"

namespace tavora::studio {

/// Writes settings as a look that readLook() reads, named as the file is, whole
/// or not at all. Throws Error, Fault::Output, and Fault::Scene for values that no look may have.
void writeLook(const Settings& settings, const std::filesystem::path& file);

}  // namespace tavora::studio
