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

/// One panel of a module: what is inside the window that shows it. GUI thread.
class PanelDialog : public QDialog {
    Q_OBJECT
  public:
    /// `owner`: the panel that it was made over; null for the outermost.
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
    /// Shows the panel in `frame` until the user closes it; whether with OK.
    /// With HOST_PANEL_CANCEL in `mode` there are OK and Cancel, else only Close.
    /// The panel may be destroyed meanwhile, and the frame with it. Leaves the
    /// frame as it stands.
    bool run(int mode, const PanelHooks& hooks, PanelFrame& frame);
    /// The same without a window: see PanelHooks::insteadOfShowing.
    void runUnseen(int mode, const PanelHooks& hooks);

    /// The markers of its gradient; null when it has none.
    ZoneMarkers* markers() const { return markers_; }

    /// Puts every control in its place when one was moved, drawn or erased.
    void settle();
    /// Its module destroyed it: closes it; it and its controls call the module
    /// no more. Deletes itself later.
    void retire();

    /// Takes over what is typed but not yet entered.
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
    void drawLater();
    void controlDrawn(const PanelControl& control, int mode);
    void settleLater();
    void orderFocus();
    void focusFirst();

    HostPanelId id_;
    PanelDialog* owner_;
    PanelCanvas* canvas_;
    QScrollArea* scroll_;
    QDialogButtonBox* buttons_;
    std::vector<PanelControl*> controls_;
    ZoneMarkers* markers_ = nullptr;
    /// In which the Tab key goes through them; null where one is gone, as buttons are that a
    /// later opening replaces.
    std::vector<QPointer<QWidget>> order_;
    HostPanelDraw* draw_ = nullptr;
    void* userData_;
    QSize asked_{0, 0};
    std::optional<int> x_;
    std::optional<int> y_;
    QEventLoop* loop_ = nullptr;
    bool unsettled_ = true;
    bool settleWaits_ = false;
    bool drawWaits_ = false;
    bool retired_ = false;
};

}  // namespace tavora::studio
