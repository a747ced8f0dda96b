#include "studio/panels/control.h"

#include <QEvent>

namespace tavora::studio {
namespace {

class WheelGuard : public QObject {
  public:
    using QObject::QObject;

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        const auto* widget = qobject_cast<QWidget*>(watched);
        if (event->type() != QEvent::Wheel || widget == nullptr || widget->hasFocus()) return false;
        event->ignore();
        return true;
    }
};

}  // namespace

void ignoreWheelWithoutFocus(QWidget& widget) {
    widget.installEventFilter(new WheelGuard(&widget));
}

PanelControl::PanelControl(const ControlSeed& seed)
    : QObject(seed.canvas), id_(seed.id), label_(seed.label), canvas_(seed.canvas) {}

void PanelControl::setField(QWidget* field, LayoutKind kind, QSize size) {
    field_ = field;
    kind_ = kind;
    size_ = size;
    field_->show();
}

void PanelControl::addLabel() {
    if (label_.isEmpty()) return;
    labelWidget_ = new QLabel(label_, canvas_);
    labelWidget_->setTextFormat(Qt::PlainText);
    labelWidget_->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    labelWidget_->setBuddy(field_);
    labelWidget_->show();
}

void PanelControl::set(HostControlAttribute attribute, const HostValue* record) {
    if (record == nullptr) return;
    if (attribute == HOST_CONTROL_USER_DATA) {
        userData_ = record->of.pointer;
        return refresh();
    }
    if (attribute == HOST_CONTROL_EVENT) {
        event_ = record->of.event;
        return;
    }
    const auto value = readValue(record);
    if (!value) return;
    if (attribute == HOST_CONTROL_VALUE) return show(*value);
    if (attribute == HOST_CONTROL_X) requested_.setX(asInteger(*value));
    if (attribute == HOST_CONTROL_Y) requested_.setY(asInteger(*value));
    emit moved();
}

void PanelControl::get(HostControlAttribute attribute, HostValue* record) const {
    if (record == nullptr) return;
    switch (attribute) {
        case HOST_CONTROL_X:
            return writeValue(requested_.x(), *record);
        case HOST_CONTROL_Y:
            return writeValue(requested_.y(), *record);
        case HOST_CONTROL_VALUE:
            return writeValue(value(), *record);
        case HOST_CONTROL_USER_DATA:
            record->of.pointer = userData_;
            return;
        case HOST_CONTROL_EVENT:
            record->of.event = event_;
            return;
        case HOST_CONTROL_MOUSE_X:
            return writeValue(mouse().x(), *record);
        case HOST_CONTROL_MOUSE_Y:
            return writeValue(mouse().y(), *record);
    }
}

void PanelControl::draw(int mode) {
    if (mode < HOST_DRAW_ERASE || mode > HOST_DRAW_REFRESH) return;
    if (mode == HOST_DRAW_REFRESH) return refresh();
    erased_ = mode == HOST_DRAW_ERASE;
    for (QWidget* widget : {field_, static_cast<QWidget*>(labelWidget_)}) {
        if (widget == nullptr) continue;
        widget->setEnabled(mode != HOST_DRAW_GHOST);
        widget->setVisible(!erased_);
    }
    refresh();
    emit drawn(mode);
}

LayoutItem PanelControl::layoutItem() const {
    LayoutItem item;
    item.kind = kind_;
    item.position = requested_;
    item.field = size_;
    item.visible = !erased_;
    if (labelWidget_ != nullptr) item.label = labelWidget_->sizeHint().width();
    return item;
}

void PanelControl::place(const LayoutItem& item) {
    field_->setGeometry(item.fieldRect);
    if (labelWidget_ != nullptr) labelWidget_->setGeometry(item.labelRect);
}

QRect PanelControl::area() const {
    return labelWidget_ != nullptr ? field_->geometry() | labelWidget_->geometry()
                                   : field_->geometry();
}

void PanelControl::setTip(const QString& accessibleName, const QString& tip) {
    field_->setAccessibleName(accessibleName);
    field_->setToolTip(tip);
    if (labelWidget_ != nullptr) labelWidget_->setToolTip(tip);
}

void PanelControl::fire() {
    if (event_ == nullptr) return;
    const QPointer<PanelControl> self(this);
    event_(id_, userData_);
    if (self.isNull()) return;
    refresh();
    emit handled();
}

}  // namespace tavora::studio
