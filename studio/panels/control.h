#pragma once

#include <QLabel>
#include <QPointer>
#include <QString>
#include <vector>

#include "studio/panels/layout.h"
#include "studio/panels/value_record.h"

namespace tavora::studio {

/// The arguments for making a control. The description is only read by the constructor; its
/// callback functions are stored.
struct ControlSeed {
    HostControlId id;
    QString label;  ///< trimmed
    const HostControlDescription& description;
    QWidget* canvas;
};

/// A control of a panel: the attributes that the module sets, and its widgets, which the canvas
/// owns. GUI thread.
class PanelControl : public QObject {
    Q_OBJECT
  public:
    explicit PanelControl(const ControlSeed& seed);

    HostControlId id() const { return id_; }
    const QString& label() const { return label_; }

    /// Sets or reads an attribute. Null records, and records of a wrong type for the attribute, are
    /// ignored. set() never fires the control's event.
    void set(HostControlAttribute attribute, const HostValue* record);
    void get(HostControlAttribute attribute, HostValue* record) const;
    /// `mode`: HOST_DRAW_...; other values are ignored.
    void draw(int mode);
    bool isErased() const { return erased_; }

    LayoutItem layoutItem() const;
    /// Moves the widgets to the rectangles that the layout determined.
    virtual void place(const LayoutItem& item);
    /// Its rectangle with the label, in panel pixels.
    virtual QRect area() const;
    /// The widgets that get the keyboard focus, in order.
    virtual std::vector<QWidget*> focusWidgets() const { return {field_}; }
    QWidget& field() const { return *field_; }
    /// The text of a control without a label, by which it is named.
    virtual QString ownText() const { return {}; }
    void setTip(const QString& accessibleName, const QString& tip);

    /// Calls the module's event, if it has one.
    void fire();
    /// To be called when its panel was destroyed: it must not fire any more.
    void retire() { event_ = nullptr; }

  signals:
    /// The module set another position.
    void moved();
    void drawn(int mode);
    /// After the module handled an event.
    void handled();

  protected:
    /// Sets the control's main widget, and its kind and size for the layout.
    void setField(QWidget* field, LayoutKind kind, QSize size);
    /// Adds the label in front of the field.
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
    QPoint requested_;  ///< the position that the module set
    bool erased_ = false;
    void* userData_ = nullptr;
    HostControlEvent* event_ = nullptr;
};

/// Prevents that the wheel changes a widget without focus, which the user only scrolls past.
void ignoreWheelWithoutFocus(QWidget& widget);

}  // namespace tavora::studio
