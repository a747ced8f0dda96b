#pragma once

#include <filesystem>
#include <optional>

namespace tavora::studio {

/// Overrides the folder of the user's settings (an option of the command line);
/// an empty path takes the override back. Before modules are activated.
void setSettingsFolder(const std::filesystem::path& folder);

/// The folder of the user's settings: the override, TAVORA_DEFAULTS,
/// $XDG_CONFIG_HOME/tavora, ~/.config/tavora; none when nothing of these is
/// set. It need not exist.
std::optional<std::filesystem::path> settingsFolder();

}  // namespace tavora::studio
