#pragma once

#include <QFont>

namespace tavora::studio {

/// The font of panels: the desktop's, in a size and width of about 5.4 pixels a character, which
/// modules expect. GUI thread.
QFont panelFont();

}  // namespace tavora::studio
