#pragma once

#include <filesystem>
#include <vector>

namespace tavora::studio {

/// The scenes that were opened recently, the last one first. The list is in the folder of the
/// user's settings. When several programs write it at once, the last one wins. Failing to read
/// or write it is no error; the list is then shorter.
std::vector<std::filesystem::path> recentFiles();

/// Puts `scene`, made absolute, at the front of the list, which has at most ten.
void addRecentFile(const std::filesystem::path& scene);

}  // namespace tavora::studio
