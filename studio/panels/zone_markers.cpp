#include "studio/panels/zone_markers.h"

#include <QApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <algorithm>
#include <cmath>

namespace tavora::studio {
namespace {

enum Mode { Add, Blend, Select, Delete };

constexpr int kReach = 390;        // pixels of the strip from position 0 to 1
constexpr int kGrab = 5;           // a marker is touched from this far, in pixels
constexpr int kSelectedShift = 2;  // from the mark of the selection to the zone's own mark
constexpr double kStep = 1;        // percent a key press
constexpr double kWideStep = 10;

bool marksZone(const QString& mark) {
    return mark == QLatin1String("|") || mark == QLatin1String("'");
}

double percentOf(int x) {
    return (x - 1) * 100.0 / kReach;
}

}  // namespace

ZoneMarkers::ZoneMarkers(const Parts& parts) : QObject(&parts.strip), parts_(parts) {
    area().setReach(0);
    area().installEventFilter(this);
}

/// From the left edge of the strip, where a press meets the zone.
std::vector<int> ZoneMarkers::places() const {
    std::vector<int> found;
    for (const PanelDrawing::Text& text : parts_.canvas.drawing().texts()) {
        if (marksZone(text.text)) found.push_back(text.rect.left() - area().x());
    }
    std::ranges::sort(found);
    return found;
}

int ZoneMarkers::selected() const {
    const std::vector<int> all = places();
    for (const PanelDrawing::Text& text : parts_.canvas.drawing().texts()) {
        if (text.text != QLatin1String("^")) continue;
        const int place = text.rect.left() - area().x() + kSelectedShift;
        const auto above = std::ranges::upper_bound(all, place);
        return static_cast<int>(above - all.begin()) - 1;
    }
    return -1;
}

void ZoneMarkers::select(int zone) {
    const std::vector<int> all = places();
    if (all.empty()) return;
    const int last = static_cast<int>(all.size()) - 1;
    pressAt(all[static_cast<std::size_t>(std::clamp(zone, 0, last))], Select);
}

std::optional<int> ZoneMarkers::touched(int x) const {
    const std::vector<int> all = places();
    const auto distance = [x](int place) { return std::abs(place - x); };
    const auto nearest = std::ranges::min_element(all, {}, distance);
    if (nearest == all.end() || distance(*nearest) > kGrab) return std::nullopt;
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
    // The module's strip acts only on the page that shows its choice.
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

/// A press beside all markers is the module's, wherever it is.
bool ZoneMarkers::mousePress(const QMouseEvent& event) {
    grip_.reset();
    dragging_ = false;
    const int chosen = mode();
    if (event.button() != Qt::LeftButton || (chosen != Select && chosen != Delete)) return false;
    pressX_ = event.position().toPoint().x();
    const auto place = touched(pressX_);
    if (!place) return false;
    pressAt(*place, chosen);
    if (chosen == Select) grip_ = pressX_ - *place;
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
    const std::vector<int> all = places();
    const int zone = selected();
    if (zone < 0) return false;
    // The field may show more than the neighbours allowed.
    const double drawn = percentOf(all[static_cast<std::size_t>(zone)]);
    const double shown = number().number();
    const double now = std::abs(shown - drawn) < 100.0 / kReach ? shown : drawn;
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

/// In the middle between the selected zone and the next one.
void ZoneMarkers::pressBetween() {
    const std::vector<int> all = places();
    const auto zone = static_cast<std::size_t>(selected());
    const int end = zone + 1 < all.size() ? all[zone + 1] : kReach;
    pressAt((all[zone] + end) / 2, mode());
}

}  // namespace tavora::studio
