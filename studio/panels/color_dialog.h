#pragma once

#include "host/services/color_picker.h"

class QDialog;
class QWidget;

namespace tavora::studio {

/// Lets the user pick a colour, over `parent` (may be null). Fills the request
/// and returns 0. `open` is told the dialog while it is up, then null. GUI thread.
int pickColor(HostColorPick& request, QWidget* parent, QDialog*& open);

}  // namespace tavora::studio
