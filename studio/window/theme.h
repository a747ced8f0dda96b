#pragma once

#include <QPalette>

#include "studio/app/requests.h"

namespace tavora::studio {

/// The colours of the window and the panels. GUI thread.
QPalette paletteOf(Theme theme);

}  // namespace tavora::studio
