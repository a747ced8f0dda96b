#pragma once

#include <QDialog>
#include <optional>
#include <vector>

#include "host/services/panels.h"
#include "studio/panels/canvas.h"
#include "studio/panels/control.h"
#include "studio/panels/control_classes.h"
#include "studio/panels/panels.h"

class QDialogButtonBox;
class QEventLoop;

namespace tavora::studio {

/// One panel of a module. GUI thread.
class PanelDialog : public QDialog {
    Q_OBJECT
  public:
    PanelDialog(HostPanelId id, const QString& title, void* userData, QWidget* parent);

    HostPanelId id() const { return id_; }
    PanelCanvas& canvas() { return *canvas_; }

    PanelControl& add(HostControlId id, const ControlClass& type,
                      const HostControlDescription& description, const QString& label);
    const std::vector<PanelControl*>& controls() const { return controls_; }

    void set(HostPanelAttribute attribute, int value);
    void setDraw(HostPanelDraw* draw) { draw_ = draw; }
    void setUserData(void* userData) { userData_ = userData; }

    bool isOpen() const { return loop_ != nullptr; }
    /// Shows the panel until the user closes it; whether with OK. With
    /// HOST_PANEL_CANCEL in `mode` there are OK and Cancel, else only Close. The
    /// panel may be destroyed meanwhile.
    bool run(int mode, const PanelHooks& hooks);

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
    void addButtons(int mode);
    void fit();
    void place();
    void drawAll();
    void drawLater();
    void controlDrawn(const PanelControl& control, int mode);
    void settleLater();
    void orderFocus();
    void focusFirst();

    HostPanelId id_;
    PanelCanvas* canvas_;
    QDialogButtonBox* buttons_;
    std::vector<PanelControl*> controls_;
    std::vector<QWidget*> order_;  ///< in which the Tab key goes through them
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
