#pragma once

#include <QDialog>
#include <QPointer>
#include <optional>
#include <vector>

#include "host/services/panels.h"
#include "studio/panels/canvas.h"
#include "studio/panels/control.h"
#include "studio/panels/control_classes.h"
#include "studio/panels/panels.h"

class QDialogButtonBox;
class QEventLoop;
class QScrollArea;

namespace tavora::studio {

class PanelFrame;
class ZoneMarkers;

/// A panel of a module, without the window around it. GUI thread.
class PanelDialog : public QDialog {
    Q_OBJECT
  public:
    /// `owner` is the open panel over which it was made; null for the outermost panel.
    PanelDialog(HostPanelId id, const QString& title, void* userData, PanelDialog* owner);

    HostPanelId id() const { return id_; }
    const PanelDialog* owner() const { return owner_; }
    PanelCanvas& canvas() { return *canvas_; }

    PanelControl& add(HostControlId id, const ControlClass& type,
                      const HostControlDescription& description, const QString& label);
    const std::vector<PanelControl*>& controls() const { return controls_; }

    void set(HostPanelAttribute attribute, int value);
    void setDraw(HostPanelDraw* draw) { draw_ = draw; }
    void setUserData(void* userData) { userData_ = userData; }

    bool isOpen() const { return loop_ != nullptr; }
    /// Shows the panel in `frame` until the user closes it, and returns whether that was by OK.
    /// With HOST_PANEL_CANCEL in `mode` there are OK and Cancel, else only Close. The panel, and
    /// the frame with it, may be destroyed during the call. Does not hide the frame.
    bool run(int mode, const PanelHooks& hooks, PanelFrame& frame);
    /// The same without showing it: see PanelHooks::insteadOfShowing.
    void runHidden(int mode, const PanelHooks& hooks);

    /// The markers of its gradient; null when it has none.
    ZoneMarkers* markers() const { return markers_; }

    /// Lays out all controls if one was moved, drawn or erased since the last time.
    void updateLayout();
    /// To be called when its module destroyed it: closes it, and prevents it and its controls from
    /// calling the module. It deletes itself later.
    void retire();

    /// Also accepts text that was typed but not entered.
    void accept() override;
    void done(int result) override;

  protected:
    void changeEvent(QEvent* event) override;
    bool focusNextPrevChild(bool next) override;

  private:
    QString nameFor(const ControlClass& type, const PanelControl& control) const;
    void prepare(int mode);
    void findMarkers();
    void addButtons(int mode);
    void fit();
    void limitTo(const QRect& screen);
    void place(PanelFrame& frame) const;
    void drawAll();
    void queueDraw();
    void controlDrawn(const PanelControl& control, int mode);
    void queueLayout();
    void orderFocus();
    void focusFirst();

    HostPanelId id_;
    PanelDialog* owner_;
    PanelCanvas* canvas_;
    QScrollArea* scroll_;
    QDialogButtonBox* buttons_;
    std::vector<PanelControl*> controls_;
    ZoneMarkers* markers_ = nullptr;
    /// The widgets in the order of the Tab key; null for those that were deleted, like buttons that
    /// are replaced when the panel is opened again.
    std::vector<QPointer<QWidget>> order_;
    HostPanelDraw* draw_ = nullptr;
    void* userData_;
    QSize requested_{0, 0};
    std::optional<int> x_;
    std::optional<int> y_;
    QEventLoop* loop_ = nullptr;
    bool layoutChanged_ = true;
    bool layoutQueued_ = false;
    bool drawQueued_ = false;
    bool retired_ = false;
};

}  // namespace tavora::studio
