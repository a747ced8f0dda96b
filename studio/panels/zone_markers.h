#pragma once

#include <QObject>
#include <optional>
#include <vector>

#include "studio/panels/area_control.h"
#include "studio/panels/canvas.h"
#include "studio/panels/number_field.h"

namespace tavora::studio {

/// Makes the markers under a gradient of zones editable: a press selects the nearest marker, a drag
/// moves it, and keys select, move and delete. The module itself only has presses in a strip, a
/// choice of what they do, and a position to enter. All edits use these, so the module's own rules
/// apply. GUI thread.
class ZoneMarkers : public QObject {
  public:
    /// The parts of a panel that are used. All must outlive it.
    struct Parts {
        PanelControl& strip;     ///< the strip to press; an AreaControl
        PanelControl& mode;      ///< what they do: add, blend, select or delete
        PanelControl& position;  ///< of the selected zone, in percent; has a NumberField
        const PanelCanvas& canvas;
    };
    explicit ZoneMarkers(const Parts& parts);

    /// The index of the selected zone, from the dark end; empty when no selection is drawn.
    std::optional<int> selected() const;
    /// Selects a zone; the last one when there are fewer.
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
    std::vector<int> markerPositions() const;
    std::optional<int> markerNear(int x) const;
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
