#pragma once

class QScreen;
class QWidget;

namespace tavora::studio {

/// The display that panels of a window, or without one, are placed on. Modules
/// count from the upper left corner of the part of it that is free for windows.
QScreen& panelScreen(const QWidget& widget);
QScreen& panelScreen();

}  // namespace tavora::studio
