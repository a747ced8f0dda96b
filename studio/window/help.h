#pragma once

class QWidget;

namespace tavora::studio {

/// Shows a window with the keys and mouse actions, which stays open; raises it when it is already
/// open. GUI thread, like all of these.
void showKeys(QWidget& window);

/// Opens the documentation in the desktop's viewer; if that fails, shows where the documentation
/// is.
void openDocumentation(QWidget& window);

/// Shows the program's name and version.
void showAbout(QWidget& window);

}  // namespace tavora::studio
