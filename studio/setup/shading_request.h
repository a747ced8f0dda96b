#pragma once

#include <string>
#include <vector>

namespace tavora::studio {

/// --look [SURFACE=]FILE
struct LookChoice {
    std::string surfaces;  ///< name or glob; empty: all
    std::string look;
};

/// --set SURFACE.field=value
struct SettingChange {
    std::string surfaces;  ///< name or glob
    std::string setting;   ///< "edgeCoverage", "zones[1].color"
    std::string value;     ///< as typed
};

/// Which looks and settings the user wants on which surfaces.
struct ShadingRequest {
    std::vector<LookChoice> looks;
    std::string defaultLook = {};  ///< for surfaces without any shading; empty: they stay plain
    std::vector<SettingChange> changes;
    std::vector<std::string> plain;  ///< names or globs of surfaces to render without a shader
    std::string plugin;              ///< the module or its folder; empty: see findModule()
};

}  // namespace tavora::studio
