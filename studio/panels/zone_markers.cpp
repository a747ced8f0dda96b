#include "studio/panels/zone_markers.h"

#include <QApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <algorithm>
#include <cmath>

namespace tavora::studio {
namespace {

enum Mode { Add, Blend, Select, Delete };

constexpr int kStripWidth = 390;   // pixels between the zone positions 0 and 1
constexpr int kGrabDistance = 5;   // pixels; a press within this distance grabs a marker
constexpr int kSelectedShift = 2;  // pixels from the selection's mark to the zone's mark
constexpr double kStep = 1;        // percent a key press
constexpr double kWideStep = 10;

bool marksZone(const QString& mark) {
    return mark == QLatin1String("|") || mark == QLatin1String("'");
}

double percentOf(int x) {
    return (x - 1) * 100.0 / kStripWidth;
}

}  // namespace

ZoneMarkers::ZoneMarkers(const Parts& parts) : QObject(&parts.strip), parts_(parts) {
    area().setCaretRange(0);
    area().installEventFilter(this);
}

/// The positions at which a press hits a zone's marker, in pixels from the strip's left edge,
/// ascending.
std::vector<int> ZoneMarkers::markerPositions() const {
    std::vector<int> found;
    for (const PanelDrawing::Text& text : parts_.canvas.drawing().texts()) {
        if (marksZone(text.text)) found.push_back(text.rect.left() - area().x());
    }
    std::ranges::sort(found);
    return found;
}

std::optional<int> ZoneMarkers::selected() const {
    const std::vector<int> all = markerPositions();
    for (const PanelDrawing::Text& text : parts_.canvas.drawing().texts()) {
        if (text.text != QLatin1String("^")) continue;
        const int position = text.rect.left() - area().x() + kSelectedShift;
        const auto above = std::ranges::upper_bound(all, position);
        if (above == all.begin()) return std::nullopt;
        return static_cast<int>(above - all.begin()) - 1;
    }
    return std::nullopt;
}

void ZoneMarkers::select(int zone) {
    const std::vector<int> all = markerPositions();
    if (all.empty()) return;
    const int last = static_cast<int>(all.size()) - 1;
    pressAt(all[static_cast<std::size_t>(std::clamp(zone, 0, last))], Select);
}

std::optional<int> ZoneMarkers::markerNear(int x) const {
    const std::vector<int> all = markerPositions();
    const auto distance = [x](int position) { return std::abs(position - x); };
    const auto nearest = std::ranges::min_element(all, {}, distance);
    if (nearest == all.end() || distance(*nearest) > kGrabDistance) return std::nullopt;
    return *nearest;
}

int ZoneMarkers::mode() const {
    HostValue value{HOST_VALUE_INTEGER, {}};
    parts_.mode.get(HOST_CONTROL_VALUE, &value);
    return value.of.integer;
}

void ZoneMarkers::setMode(int mode) {
    HostValue value{HOST_VALUE_INTEGER, {}};
    value.of.integer = mode;
    parts_.mode.set(HOST_CONTROL_VALUE, &value);
}

void ZoneMarkers::pressAt(int x, int mode) {
    const int before = this->mode();
    setMode(mode);
    area().press({x, area().height() / 2});
    setMode(before);
}

bool ZoneMarkers::eventFilter(QObject* watched, QEvent* event) {
    // The module reacts to its strip only on the page that shows the choice of modes.
    if (!parts_.mode.field().isEnabled()) return QObject::eventFilter(watched, event);
    switch (event->type()) {
        case QEvent::MouseButtonPress:
        case QEvent::MouseButtonDblClick:
            return mousePress(static_cast<QMouseEvent&>(*event));
        case QEvent::MouseMove:
            return mouseMove(static_cast<QMouseEvent&>(*event));
        case QEvent::MouseButtonRelease:
            grip_.reset();
            return false;
        case QEvent::KeyPress: {
            const auto& key = static_cast<QKeyEvent&>(*event);
            if (key.key() == Qt::Key_Escape && dragging_ && grip_) {
                grip_.reset();
                move(pressNumber_);
                return true;
            }
            return keyPress(key.key(), key.modifiers().testFlag(Qt::ControlModifier));
        }
        default:
            return QObject::eventFilter(watched, event);
    }
}

/// A press that hits no marker is left to the module.
bool ZoneMarkers::mousePress(const QMouseEvent& event) {
    grip_.reset();
    dragging_ = false;
    const int chosen = mode();
    if (event.button() != Qt::LeftButton || (chosen != Select && chosen != Delete)) return false;
    pressX_ = event.position().toPoint().x();
    const auto position = markerNear(pressX_);
    if (!position) return false;
    pressAt(*position, chosen);
    if (chosen == Select) grip_ = pressX_ - *position;
    pressNumber_ = number().number();
    return true;
}

bool ZoneMarkers::mouseMove(const QMouseEvent& event) {
    if (!grip_ || !event.buttons().testFlag(Qt::LeftButton)) return false;
    const int x = event.position().toPoint().x();
    dragging_ = dragging_ || std::abs(x - pressX_) >= QApplication::startDragDistance() / 2;
    if (dragging_) move(percentOf(x - *grip_));
    return true;
}

bool ZoneMarkers::keyPress(int key, bool wide) {
    const double step = wide ? kWideStep : kStep;
    const std::vector<int> all = markerPositions();
    const std::optional<int> selectedZone = selected();
    if (!selectedZone) return false;
    const int zone = *selectedZone;
    // The field may show a position beyond the neighbouring zones, which the module did not accept.
    const double drawn = percentOf(all[static_cast<std::size_t>(zone)]);
    const double shown = number().number();
    const double now = std::abs(shown - drawn) < 100.0 / kStripWidth ? shown : drawn;
    switch (key) {
        case Qt::Key_Left:
            return move(now - step), true;
        case Qt::Key_Right:
            return move(now + step), true;
        case Qt::Key_Up:
            return select(zone + 1), true;
        case Qt::Key_Down:
            return select(zone - 1), true;
        case Qt::Key_Home:
            return select(0), true;
        case Qt::Key_End:
            return select(static_cast<int>(all.size()) - 1), true;
        case Qt::Key_Delete:
        case Qt::Key_Backspace:
            return pressAt(all[static_cast<std::size_t>(zone)], Delete), true;
        case Qt::Key_Space:
        case Qt::Key_Return:
        case Qt::Key_Enter:
            return pressBetween(), true;
        default:
            return false;
    }
}

void ZoneMarkers::move(double percent) {
    number().enter(percent);
}

/// Presses halfway between the selected zone and the next one.
void ZoneMarkers::pressBetween() {
    const std::vector<int> all = markerPositions();
    const auto zone = static_cast<std::size_t>(selected().value());
    const int end = zone + 1 < all.size() ? all[zone + 1] : kStripWidth;
    pressAt((all[zone] + end) / 2, mode());
}

}  // namespace tavora::studio
