#pragma once

#include "host/services/color_picker.h"

class QDialog;
class QWidget;

namespace tavora::studio {

/// Lets the user pick a colour in a dialog over `parent` (may be null). Fills the request and
/// returns 0. `open` points at the dialog while it is open, and is null afterwards. GUI thread.
int pickColor(HostColorPick& request, QWidget* parent, QDialog*& open);

}  // namespace tavora::studio
