#pragma once

#include <QPoint>
#include <QRect>
#include <QSize>

namespace tavora::studio {

/// The position of a panel's window: beside the main window if there is space, else where it covers
/// as little as possible of `side`, and then of the window. In desktop pixels, with window frames.
/// `screen` is the available geometry.
QPoint panelPosition(const QRect& screen, const QRect& window, const QRect& side, QSize panel);

/// The position nearest to `wanted` with all of the panel on the screen; a panel that is too large
/// begins at the screen's left or upper edge.
QPoint within(const QRect& screen, QPoint wanted, QSize panel);

}  // namespace tavora::studio
