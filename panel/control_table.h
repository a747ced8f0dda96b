#pragma once

#include "plugin/record/shader_instance.h"

namespace tavora {

/// Makes the 66 controls of the settings panel (`panelID`) in their order: puts
/// each into its slot, at its place, showing the record, with its event
/// callback. [interface]
void createControls(ShaderInstance* instance);

}  // namespace tavora
