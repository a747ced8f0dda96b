#pragma once

#include <filesystem>
#include <vector>

namespace tavora::studio {

/// Scenes that were open lately, the last first, kept in the user's settings
/// folder. Several programs may write it at once: the last one wins. Any failure
/// to read or write leaves a shorter list and is no error.
std::vector<std::filesystem::path> recentFiles();

/// Puts `scene` (made absolute) first; the list keeps ten.
void addRecentFile(const std::filesystem::path& scene);

}  // namespace tavora::studio
