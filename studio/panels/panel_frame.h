#pragma once

#include <QPointer>
#include <QWidget>

#include "studio/panels/panel_dialog.h"

namespace tavora::studio {

/// The window around a panel. When a panel is closed only to open another, the same window is used
/// again, so that it neither moves nor flickers. GUI thread.
class PanelFrame : public QWidget {
  public:
    /// `parent` may be null.
    explicit PanelFrame(QWidget* parent);
    /// Does not delete the panel, which belongs to its module.
    ~PanelFrame() override;

    /// Replaces the panel in the window. The panel may be destroyed while it is shown. Does not
    /// show the window.
    void take(PanelDialog& panel);

  protected:
    void closeEvent(QCloseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

  private:
    void release();

    QPointer<PanelDialog> panel_;
    bool forwards_ = false;  ///< a key is being passed on to the panel
};

}  // namespace tavora::studio
