#pragma once

#include <QPoint>
#include <QRect>
#include <QSize>

namespace tavora::studio {

/// Where a panel's window goes: beside the main window, else where it covers
/// none or the least of `side`, and then the least of the window. All in pixels
/// of the desktop, frames included. `screen`: the part that is free for windows.
QPoint panelPlace(const QRect& screen, const QRect& window, const QRect& side, QSize panel);

/// The place nearest to `wanted` where all of the panel is on the screen; what
/// is larger than that begins at the screen's left or upper edge.
QPoint within(const QRect& screen, QPoint wanted, QSize panel);

}  // namespace tavora::studio
