#pragma once

#include <QObject>
#include <optional>
#include <vector>

#include "studio/panels/area_control.h"
#include "studio/panels/canvas.h"
#include "studio/panels/number_field.h"

namespace tavora::studio {

/// The markers under a gradient of zones, taken by hand: a press takes the marker
/// that it touches, a drag moves it, keys select, move and delete. The module
/// knows only presses in a strip, a choice of what they do, and a position to
/// enter; all goes through these, so the module's own rules hold. GUI thread.
class ZoneMarkers : public QObject {
  public:
    /// What of a panel takes part. All outlive it.
    struct Parts {
        PanelControl& strip;     ///< where presses act; an AreaControl
        PanelControl& mode;      ///< what they do: add, blend, select or delete
        PanelControl& position;  ///< of the selected zone, in percent; has a NumberField
        const PanelCanvas& canvas;
    };
    explicit ZoneMarkers(const Parts& parts);

    /// The selected zone, counted from the dark end; -1: none is drawn.
    int selected() const;
    /// Selects a zone, or where there are fewer the last.
    void select(int zone);

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    bool mousePress(const QMouseEvent& event);
    bool mouseMove(const QMouseEvent& event);
    bool keyPress(int key, bool wide);
    void move(double percent);
    void pressBetween();
    void pressAt(int x, int mode);
    std::vector<int> places() const;
    std::optional<int> touched(int x) const;
    int mode() const;
    void setMode(int mode);
    AreaWidget& area() const { return static_cast<AreaWidget&>(parts_.strip.field()); }
    NumberField& number() const { return static_cast<NumberField&>(parts_.position.field()); }

    Parts parts_;
    std::optional<int> grip_;  ///< from the pressed marker to the mouse, in pixels
    int pressX_ = 0;
    double pressNumber_ = 0;
    bool dragging_ = false;
};

}  // namespace tavora::studio
