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

/// While it lives, modules that ask on this thread are told that there is no
/// folder of the user's settings: new shaders start from the values that are
/// built into the module, and a panel that opens stores nothing. settingsFolder()
/// is as before. May be nested.
class HiddenSettingsFolder {
  public:
    HiddenSettingsFolder() { ++hidden; }
    ~HiddenSettingsFolder() { --hidden; }
    HiddenSettingsFolder(const HiddenSettingsFolder&) = delete;
    HiddenSettingsFolder& operator=(const HiddenSettingsFolder&) = delete;

    /// Whether one lives on this thread.
    static bool any() { return hidden > 0; }

  private:
    inline static thread_local int hidden = 0;
};

}  // namespace tavora::studio
