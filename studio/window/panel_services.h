#pragma once

#include "studio/link/shader.h"
#include "studio/scene/lighting/light_set.h"
#include "studio/services/scene_index.h"
#include "studio/services/service_binding.h"

namespace tavora::studio {

/// As long as an object of this class exists, services on its thread refer to these lights and an
/// empty scene: panels need the lights only, so no mipmaps are made.
class PanelBinding {
  public:
    /// `lights` must outlive it.
    explicit PanelBinding(const LightSet& lights);

  private:
    Scene emptyScene_;
    SceneIndex index_;
    ServiceBinding binding_;
};

/// Opens the options panel of an instance and returns when it is closed. Throws Error,
/// Fault::Module, with the module's message, or when it has no panel. GUI thread; Panels and a
/// PanelBinding must exist.
void openOptions(const ModuleCopy& module, Shader& record);

}  // namespace tavora::studio
