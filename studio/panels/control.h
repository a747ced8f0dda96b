#pragma once

#include <QLabel>
#include <QPointer>
#include <QString>
#include <vector>

#include "studio/panels/layout.h"
#include "studio/panels/value_record.h"

namespace tavora::studio {

/// What a control is made from. The description is read while it is made; its
/// functions are kept.
struct ControlSeed {
    HostControlId id;
    QString label;  ///< trimmed
    const HostControlDescription& description;
    QWidget* canvas;
};

/// One control of a panel: its module's attributes, and the widgets that show
/// it, which the canvas owns. GUI thread.
class PanelControl : public QObject {
    Q_OBJECT
  public:
    explicit PanelControl(const ControlSeed& seed);

    HostControlId id() const { return id_; }
    const QString& label() const { return label_; }

    /// Null records, and records that make no sense for the attribute, change
    /// nothing. Never fires the control's event.
    void set(HostControlAttribute attribute, const HostValue* record);
    void get(HostControlAttribute attribute, HostValue* record) const;
    /// HOST_DRAW_...; others change nothing.
    void draw(int mode);
    bool isErased() const { return erased_; }

    LayoutItem layoutItem() const;
    virtual void place(const LayoutItem& item);
    /// Where it is, label included, in panel pixels.
    virtual QRect area() const;
    /// What the keyboard goes through, in order.
    virtual std::vector<QWidget*> focusWidgets() const { return {field_}; }
    QWidget& field() const { return *field_; }
    /// What a control without a label is known by: the text that it shows.
    virtual QString ownText() const { return {}; }
    void setTip(const QString& accessibleName, const QString& tip);

    /// Calls the module's event, if it has one.
    void fire();
    /// Its panel was destroyed: it fires no more.
    void retire() { event_ = nullptr; }

  signals:
    void changedPlace();
    void drawn(int mode);
    /// After the module handled an event.
    void handled();

  protected:
    /// The control's one widget, and how it takes part in the layout.
    void setField(QWidget* field, LayoutKind kind, QSize size);
    /// A text in front of the field.
    void addLabel();
    void* userData() const { return userData_; }
    QFontMetrics metrics() const { return field_->fontMetrics(); }

    virtual ControlValue value() const { return 0; }
    virtual void show(const ControlValue& /*value*/) {}
    virtual void refresh() {}
    virtual QPoint mouse() const { return {}; }

  private:
    HostControlId id_;
    QString label_;
    QWidget* canvas_;
    QWidget* field_ = nullptr;
    QLabel* labelWidget_ = nullptr;
    LayoutKind kind_ = LayoutKind::Plain;
    QSize size_;
    QPoint at_;
    bool erased_ = false;
    void* userData_ = nullptr;
    HostControlEvent* event_ = nullptr;
};

/// Keeps the wheel from changing a widget that the user only scrolls past.
void ignoreWheelWithoutFocus(QWidget& widget);

}  // namespace tavora::studio
