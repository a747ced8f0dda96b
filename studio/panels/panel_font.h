#pragma once

#include <QFont>

namespace tavora::studio {

/// The font of panels: the desktop's, small and narrow enough that labels end
/// where modules expect them to, about 5.4 pixels a character. GUI thread.
QFont panelFont();

}  // namespace tavora::studio
