#pragma once

#include "studio/link/shader.h"
#include "studio/scene/lighting/light_set.h"
#include "studio/services/scene_index.h"
#include "studio/services/service_binding.h"

namespace tavora::studio {

/// While it lives, modules on this thread hear of the rig's lights. Panels ask
/// for lights alone: no textures are made ready for them.
class PanelBinding {
  public:
    /// `lights` must outlive it.
    explicit PanelBinding(const LightSet& lights);

  private:
    Scene nothing_;
    SceneIndex index_;
    ServiceBinding binding_;
};

/// Opens the options panel of a record and returns when it is closed. Throws
/// Fault::Module with the module's text, or when it has no panel. GUI thread, with
/// Panels and a PanelBinding in place.
void openOptions(const ModuleCopy& module, Shader& record);

}  // namespace tavora::studio
