#pragma once

class QScreen;
class QWidget;

namespace tavora::studio {

/// The screen on which panels of a window, or without a window, are placed. The positions that
/// modules use are relative to the upper left corner of its available geometry.
QScreen& panelScreen(const QWidget& widget);
QScreen& panelScreen();

}  // namespace tavora::studio
