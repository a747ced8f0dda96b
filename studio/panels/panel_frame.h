#pragma once

#include <QPointer>
#include <QWidget>

#include "studio/panels/panel_dialog.h"

namespace tavora::studio {

/// The window around a panel. A program that closes a panel only to open it
/// anew hands the same window on, which then neither moves nor flashes. GUI thread.
class PanelFrame : public QWidget {
  public:
    /// `parent`: the widget that the panel stands over; may be null.
    explicit PanelFrame(QWidget* parent);
    /// Leaves the panel without a window; it stays its module's.
    ~PanelFrame() override;

    /// Shows this panel instead of the one before. The panel may be destroyed
    /// while it is shown. Does not show the window.
    void take(PanelDialog& panel);

  protected:
    void closeEvent(QCloseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

  private:
    void letGo();

    QPointer<PanelDialog> panel_;
    bool forwards_ = false;  ///< a key is on its way to the panel
};

}  // namespace tavora::studio
