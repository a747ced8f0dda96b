#pragma once

class QWidget;

namespace tavora::studio {

/// A window with what the keys and the mouse do. Stays open beside the work;
/// brought to the front when it is open already. GUI thread, as all of these.
void showKeys(QWidget& window);

/// Opens the documentation in the desktop's viewer; where that cannot be, says
/// where the documentation is.
void openDocumentation(QWidget& window);

/// Name and version.
void showAbout(QWidget& window);

}  // namespace tavora::studio
