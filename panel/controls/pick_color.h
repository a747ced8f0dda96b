#pragma once

namespace tavora {

/// Opens the host's colour picker on `color` (three channels, 0..1) and stores
/// what the user confirmed; cancelled or failing, it leaves the colour alone.
/// [interface]
void pickColor(const char* title, float color[3]);

}  // namespace tavora
