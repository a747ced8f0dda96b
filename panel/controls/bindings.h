#pragma once

#include <span>

#include "plugin/record/shader_instance.h"

/// Which setting each control shows and edits. A binding's kind of field says
/// how it is converted: a float shows as percent, three as a colour, an integer
/// as it is. Everything here is [interface].
namespace tavora {

/// Shows the setting in its control. A zone's setting shows only while a zone
/// is selected.
void showSetting(int slot, const ShaderInstance& record);

/// Takes the setting from its control, likewise.
void takeSetting(int slot, ShaderInstance& record);

/// Whether some setting is bound to the slot.
bool hasSetting(int slot);

void showSettings(std::span<const int> slots, const ShaderInstance& record);
void takeSettings(std::span<const int> slots, ShaderInstance& record);

}  // namespace tavora
