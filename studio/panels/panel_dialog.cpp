#include "studio/panels/panel_dialog.h"

#include <QDialogButtonBox>
#include <QEvent>
#include <QEventLoop>
#include <QPointer>
#include <QPushButton>
#include <QScreen>
#include <QScrollArea>
#include <QStyle>
#include <QTabBar>
#include <QVBoxLayout>
#include <algorithm>

#include "studio/panels/display.h"
#include "studio/panels/focus_order.h"
#include "studio/panels/number_field.h"
#include "studio/panels/panel_font.h"
#include "studio/panels/panel_frame.h"
#include "studio/panels/tips.h"
#include "studio/panels/zone_markers.h"

namespace tavora::studio {
namespace {

constexpr int kMargin = 10;
constexpr int kWindowBorder = 60;  // pixels of a window's frame and of a task bar's edge

}  // namespace

PanelDialog::PanelDialog(HostPanelId id, const QString& title, void* userData, PanelDialog* owner)
    : id_(id),
      owner_(owner),
      canvas_(new PanelCanvas(this)),
      scroll_(new QScrollArea(this)),
      buttons_(new QDialogButtonBox(this)),
      userData_(userData) {
    setWindowTitle(title);
    setFont(panelFont());
    auto* lines = new QVBoxLayout(this);
    lines->setContentsMargins(0, 0, 0, 0);
    lines->setSpacing(0);
    lines->setSizeConstraint(QLayout::SetFixedSize);
    scroll_->setFrameShape(QFrame::NoFrame);
    scroll_->setFocusPolicy(Qt::NoFocus);
    scroll_->setWidget(canvas_);
    lines->addWidget(scroll_);
    buttons_->setContentsMargins(kMargin, 0, kMargin, kMargin);
    lines->addWidget(buttons_);
    connect(buttons_, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons_, &QDialogButtonBox::rejected, this, &QDialog::reject);
}

PanelControl& PanelDialog::add(HostControlId id, const ControlClass& type,
                               const HostControlDescription& description, const QString& label) {
    PanelControl* control = type.make({id, label.trimmed(), description, canvas_});
    controls_.push_back(control);
    const QString name = nameFor(type, *control);
    control->setObjectName(name);
    control->field().setObjectName(name);
    const ControlTip tip = tipFor(windowTitle(), name);
    control->setTip(tip.name.isEmpty() ? control->label() : tip.name, tip.text);
    connect(control, &PanelControl::moved, this, &PanelDialog::queueLayout);
    connect(control, &PanelControl::handled, this, &PanelDialog::updateLayout);
    connect(control, &PanelControl::drawn, this,
            [this, control](int mode) { controlDrawn(*control, mode); });
    queueLayout();
    return *control;
}

/// "Label.class", or only the class when there is neither label nor text. From the second control
/// of that name on, ".2", ".3" and so on is appended.
QString PanelDialog::nameFor(const ControlClass& type, const PanelControl& control) const {
    QString base = control.label().isEmpty() ? control.ownText() : control.label();
    while (base.endsWith(QLatin1Char('.')) || base.endsWith(QLatin1Char(':')))
        base.chop(1);
    base += (base.isEmpty() ? QString() : QStringLiteral(".")) + QLatin1String(type.shortName);
    QString name = base;
    const auto taken = [&](const PanelControl* other) { return other->objectName() == name; };
    for (int number = 2; std::ranges::any_of(controls_, taken); ++number)
        name = QStringLiteral("%1.%2").arg(base).arg(number);
    return name;
}

void PanelDialog::set(HostPanelAttribute attribute, int value) {
    switch (attribute) {
        case HOST_PANEL_WIDTH:
            return requested_.setWidth(value);
        case HOST_PANEL_HEIGHT:
            return requested_.setHeight(value);
        case HOST_PANEL_X:
            x_ = value;
            return;
        case HOST_PANEL_Y:
            y_ = value;
            return;
    }
}

void PanelDialog::prepare(int mode) {
    setResult(Rejected);
    findMarkers();
    addButtons(mode);
    drawAll();
    fit();
    updateLayout();
}

void PanelDialog::findMarkers() {
    const MarkerControls names = markerControlsOf(windowTitle());
    const auto named = [this](const char* name) {
        const auto found = std::ranges::find(controls_, QLatin1String(name), &QObject::objectName);
        return found == controls_.end() ? nullptr : *found;
    };
    PanelControl* strip = named(names.strip);
    PanelControl* choice = named(names.mode);
    PanelControl* position = named(names.position);
    if (markers_ != nullptr || strip == nullptr || choice == nullptr || position == nullptr) return;
    markers_ = new ZoneMarkers({*strip, *choice, *position, *canvas_});
}

void PanelDialog::runHidden(int mode, const PanelHooks& hooks) {
    if (isOpen() || retired_) return;
    prepare(mode);
    hooks.insteadOfShowing(*this);
}

bool PanelDialog::run(int mode, const PanelHooks& hooks, PanelFrame& frame) {
    if (isOpen() || retired_) return false;
    const QPointer<PanelDialog> self(this);
    prepare(mode);
    QEventLoop loop;
    loop_ = &loop;
    limitTo(panelScreen(frame).availableGeometry());
    frame.take(*this);
    if (!frame.isVisible()) {
        place(frame);
        if (hooks.opening) hooks.opening(*this);
        frame.show();
    }
    focusFirst();
    if (hooks.opened) hooks.opened(*this);
    // The hook may have closed or destroyed the panel.
    if (!self.isNull() && isOpen() && isVisible()) loop.exec();
    if (self.isNull()) return false;
    loop_ = nullptr;
    // The loop also ends when the program ends with the panel open.
    if (isVisible()) done(Rejected);
    if (hooks.closed) hooks.closed(*this);
    return !self.isNull() && result() == Accepted;
}

void PanelDialog::addButtons(int mode) {
    buttons_->setStandardButtons((mode & HOST_PANEL_CANCEL) != 0
                                     ? QDialogButtonBox::Ok | QDialogButtonBox::Cancel
                                     : QDialogButtonBox::Close);
    for (const auto standard : {QDialogButtonBox::Ok, QDialogButtonBox::Close}) {
        QPushButton* button = buttons_->button(standard);
        if (button == nullptr) continue;
        button->setDefault(true);
        // Otherwise the button stops being the default when it loses the focus: Qt restores that
        // only for dialogs that are windows.
        button->setAutoDefault(false);
    }
}

/// Makes the canvas at least as large as requested, and large enough for all controls, also those
/// that are erased now.
void PanelDialog::fit() {
    std::vector<LayoutItem> items;
    for (const PanelControl* control : controls_) {
        items.push_back(control->layoutItem());
        items.back().visible = true;
    }
    layOut(items, canvas_->drawing().frame());
    QRect all = canvas_->drawing().bounds();
    for (const LayoutItem& item : items)
        all |= item.fieldRect | item.labelRect;
    canvas_->setFixedSize(std::max(requested_.width(), all.right() + 1 + kMargin),
                          std::max(requested_.height(), all.bottom() + 1 + kMargin));
    scroll_->setFixedSize(canvas_->size());
    layout()->activate();
    adjustSize();
}

/// On a small screen, only the canvas is scrolled, so that the buttons below it stay visible.
void PanelDialog::limitTo(const QRect& screen) {
    const QSize size = canvas_->size();
    const QSize available(screen.width() - kWindowBorder,
                          screen.height() - kWindowBorder - buttons_->sizeHint().height());
    const int bar = style()->pixelMetric(QStyle::PM_ScrollBarExtent);
    const bool high = size.height() > available.height();
    const bool wide = size.width() + (high ? bar : 0) > available.width();
    scroll_->setFixedSize((size + QSize(high ? bar : 0, wide ? bar : 0)).boundedTo(available));
    layout()->activate();
    adjustSize();
}

/// Moves the frame to the position that the module requested, with the same centre if the panel is
/// larger than requested.
void PanelDialog::place(PanelFrame& frame) const {
    // The window stays usable under the outermost panel, to look at what is edited.
    const bool blocks = owner_ != nullptr || frame.parentWidget() == nullptr;
    frame.setWindowModality(blocks ? Qt::WindowModal : Qt::NonModal);
    if (!x_ || !y_) return;
    const QRect screen = panelScreen(frame).availableGeometry();
    const QSize own = frame.frameSize();
    const QSize requested = requested_.isEmpty() ? own : requested_;
    const QPoint wanted = screen.topLeft() + QPoint(*x_ + (requested.width() - own.width()) / 2,
                                                    *y_ + (requested.height() - own.height()) / 2);
    const QPoint last = screen.bottomRight() - QPoint(own.width(), own.height());
    frame.move(std::max(std::min(wanted.x(), last.x()), screen.left()),
               std::max(std::min(wanted.y(), last.y()), screen.top()));
}

void PanelDialog::drawAll() {
    if (draw_ == nullptr) return;
    canvas_->clearAll();
    draw_(id_, userData_);
}

void PanelDialog::queueDraw() {
    if (std::exchange(drawQueued_, true)) return;
    QMetaObject::invokeMethod(
        this,
        [this] {
            drawQueued_ = false;
            drawAll();
        },
        Qt::QueuedConnection);
}

void PanelDialog::changeEvent(QEvent* event) {
    QDialog::changeEvent(event);
    const auto type = event->type();
    if (type == QEvent::PaletteChange || type == QEvent::StyleChange) queueDraw();
}

void PanelDialog::controlDrawn(const PanelControl& control, int mode) {
    queueLayout();
    if (mode == HOST_DRAW_GHOST || control.layoutItem().kind != LayoutKind::Area) return;
    canvas_->clear(QRect(control.layoutItem().position, control.layoutItem().field));
}

void PanelDialog::queueLayout() {
    layoutChanged_ = true;
    if (std::exchange(layoutQueued_, true)) return;
    QMetaObject::invokeMethod(
        this,
        [this] {
            layoutQueued_ = false;
            updateLayout();
        },
        Qt::QueuedConnection);
}

void PanelDialog::updateLayout() {
    if (!std::exchange(layoutChanged_, false)) return;
    std::vector<LayoutItem> items;
    for (const PanelControl* control : controls_)
        items.push_back(control->layoutItem());
    layOut(items, canvas_->drawing().frame());
    for (std::size_t i = 0; i < items.size(); ++i)
        controls_[i]->place(items[i]);
    const auto* tabs = canvas_->findChild<QTabBar*>();
    canvas_->setTabBar(tabs != nullptr && !tabs->isHidden() ? tabs->geometry() : QRect());
    orderFocus();
    canvas_->update();
}

void PanelDialog::orderFocus() {
    std::vector<PanelControl*> shown;
    std::vector<QRect> areas;
    for (PanelControl* control : controls_) {
        if (control->isErased()) continue;
        shown.push_back(control);
        areas.push_back(control->area());
    }
    order_.clear();
    for (const std::size_t index : focusOrder(areas, canvas_->drawing().frame())) {
        for (QWidget* widget : shown[index]->focusWidgets())
            order_.push_back(widget);
    }
    for (QAbstractButton* button : buttons_->buttons())
        order_.push_back(button);
}

bool PanelDialog::focusNextPrevChild(bool next) {
    const auto count = static_cast<std::ptrdiff_t>(order_.size());
    const auto now = std::find(order_.begin(), order_.end(), focusWidget());
    std::ptrdiff_t index = now != order_.end() ? now - order_.begin() : (next ? -1 : count);
    for (std::ptrdiff_t tried = 0; tried < count; ++tried) {
        index = (index + (next ? 1 : count - 1)) % count;
        QWidget* widget = order_[static_cast<std::size_t>(index)];
        if (widget == nullptr || !widget->isVisible() || !widget->isEnabled()) continue;
        if ((widget->focusPolicy() & Qt::TabFocus) == 0) continue;
        widget->setFocus(next ? Qt::TabFocusReason : Qt::BacktabFocusReason);
        scroll_->ensureWidgetVisible(widget);
        return true;
    }
    return false;
}

/// Focuses the tabs if there are any, so that the arrow keys change the page.
void PanelDialog::focusFirst() {
    if (auto* tabs = canvas_->findChild<QTabBar*>()) {
        tabs->setFocus(Qt::OtherFocusReason);
    } else if (!buttons_->buttons().isEmpty()) {
        buttons_->buttons().first()->setFocus(Qt::OtherFocusReason);
    }
}

void PanelDialog::accept() {
    const QPointer<PanelDialog> self(this);
    if (auto* number = qobject_cast<NumberField*>(focusWidget())) number->commit();
    if (!self.isNull()) QDialog::accept();
}

void PanelDialog::done(int result) {
    if (isOpen() && !isVisible()) return;  // already closed; its loop is about to end
    QDialog::done(result);
    if (loop_ != nullptr) loop_->quit();
}

void PanelDialog::retire() {
    if (std::exchange(retired_, true)) return;
    draw_ = nullptr;
    for (PanelControl* control : controls_)
        control->retire();
    done(Rejected);
    deleteLater();
}

}  // namespace tavora::studio
