#include "studio/panels/choice_controls.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QComboBox>
#include <QHBoxLayout>
#include <QPainter>
#include <QPushButton>
#include <QSignalBlocker>
#include <QStringList>
#include <QTabBar>

namespace tavora::studio {
namespace {

constexpr int kSegmentMargins = 12;
constexpr int kTabHeight = 25;  // one pixel over the frame
constexpr int kTabInset = 5;

QStringList itemsOf(const HostControlDescription& description) {
    QStringList items;
    if (description.type != HOST_VALUE_CHOICE || description.of.choice.items == nullptr)
        return items;
    for (const char** item = description.of.choice.items; *item != nullptr; ++item)
        items.append(QString::fromUtf8(*item).trimmed());
    return items;
}

/// One button of a row of joined buttons.
class Segment : public QPushButton {
  public:
    enum Ends { First = 1, Last = 2 };
    Segment(const QString& text, int ends, QWidget* parent)
        : QPushButton(text, parent), ends_(ends) {}

  protected:
    void paintEvent(QPaintEvent* /*event*/) override {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(palette().color(QPalette::Window).darker(150));
        painter.setBrush(fill());
        painter.drawRoundedRect(outline(), kRound, kRound);
        if ((ends_ & First) == 0) painter.drawLine(QPointF(0.5, 1), QPointF(0.5, height() - 1));
        const bool chosen = isChecked() && isEnabled();
        const QColor ink =
            palette().color(chosen ? QPalette::HighlightedText : QPalette::ButtonText);
        painter.setPen(ink);
        painter.drawText(rect(), Qt::AlignCenter, text());
        if (!hasFocus()) return;
        painter.setBrush(Qt::NoBrush);
        painter.drawRect(QRectF(rect()).adjusted(3.5, 3.5, -3.5, -3.5));
    }

  private:
    QColor fill() const {
        if (isDown()) return palette().color(QPalette::Button).darker(120);
        if (!isChecked()) return palette().color(QPalette::Button);
        return isEnabled() ? palette().color(QPalette::Highlight)
                           : palette().color(QPalette::Button).darker(109);
    }

    /// Extends beyond the sides with an adjacent button, so that only the ends of the row are
    /// rounded.
    QRectF outline() const {
        QRectF whole = QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5);
        if ((ends_ & First) == 0) whole.adjust(-kRound, 0, 0, 0);
        if ((ends_ & Last) == 0) whole.adjust(0, 0, kRound, 0);
        return whole;
    }

    static constexpr double kRound = 2;
    int ends_;
};

}  // namespace

void OneOfControl::show(const ControlValue& value) {
    chosen_ = asInteger(value);
    showItem(chosen_);
}

void OneOfControl::choose(int item) {
    if (std::exchange(chosen_, item) != item) fire();
}

PopupControl::PopupControl(const ControlSeed& seed)
    : OneOfControl(seed), list_(new QComboBox(seed.canvas)) {
    list_->addItems(itemsOf(seed.description));
    ignoreWheelWithoutFocus(*list_);
    int width = seed.description.type == HOST_VALUE_CHOICE ? seed.description.of.choice.width : 0;
    for (int i = 0; i < list_->count(); ++i)
        width = std::max(width, list_->fontMetrics().horizontalAdvance(list_->itemText(i)) + 28);
    setField(list_, LayoutKind::Labelled, QSize(width, kRowHeight));
    addLabel();
    connect(list_, &QComboBox::activated, this, [this](int item) { choose(item); });
}

void PopupControl::showItem(int item) {
    list_->setCurrentIndex(item < list_->count() ? std::max(item, -1) : -1);
}

ChoiceControl::ChoiceControl(const ControlSeed& seed) : OneOfControl(seed) {
    auto* row = new QWidget(seed.canvas);
    auto* line = new QHBoxLayout(row);
    line->setContentsMargins(0, 0, 0, 0);
    line->setSpacing(0);
    group_ = new QButtonGroup(row);
    const QStringList items = itemsOf(seed.description);
    int width = 0;
    for (const QString& item : items)
        width = std::max(width, row->fontMetrics().horizontalAdvance(item) + kSegmentMargins);
    for (qsizetype i = 0; i < items.size(); ++i) {
        const int ends =
            (i == 0 ? Segment::First : 0) | (i + 1 == items.size() ? Segment::Last : 0);
        auto* button = new Segment(items[i], ends, row);
        button->setCheckable(true);
        button->setAutoDefault(false);
        button->setFixedSize(width, kRowHeight);
        group_->addButton(button, static_cast<int>(i));
        line->addWidget(button);
    }
    setField(row, LayoutKind::Plain, QSize(width * static_cast<int>(items.size()), kRowHeight));
    addLabel();
    connect(group_, &QButtonGroup::idClicked, this, [this](int item) { choose(item); });
}

std::vector<QWidget*> ChoiceControl::focusWidgets() const {
    const QList<QAbstractButton*> buttons = group_->buttons();
    return {buttons.begin(), buttons.end()};
}

void ChoiceControl::showItem(int item) {
    if (QAbstractButton* button = group_->button(item)) return button->setChecked(true);
    if (group_->checkedButton() == nullptr) return;
    group_->setExclusive(false);
    group_->checkedButton()->setChecked(false);
    group_->setExclusive(true);
}

TabChoiceControl::TabChoiceControl(const ControlSeed& seed)
    : OneOfControl(seed), tabs_(new QTabBar(seed.canvas)) {
    tabs_->setDrawBase(false);
    tabs_->setExpanding(false);
    tabs_->setUsesScrollButtons(false);
    ignoreWheelWithoutFocus(*tabs_);
    for (const QString& item : itemsOf(seed.description))
        tabs_->addTab(item);
    setField(tabs_, LayoutKind::Plain, QSize(tabs_->sizeHint().width(), kTabHeight));
    connect(tabs_, &QTabBar::currentChanged, this, [this](int item) { choose(item); });
    // Clicking the current tab counts too when the module's value is another.
    connect(tabs_, &QTabBar::tabBarClicked, this, [this](int item) {
        if (item >= 0 && item == tabs_->currentIndex()) choose(item);
    });
}

void TabChoiceControl::place(const LayoutItem& item) {
    tabs_->setGeometry(item.fieldRect.translated(kTabInset, 0));
}

void TabChoiceControl::showItem(int item) {
    const QSignalBlocker silent(tabs_);
    tabs_->setCurrentIndex(item);
}

BoolControl::BoolControl(const ControlSeed& seed) : OneOfControl(seed) {
    auto* box = new QCheckBox(seed.label, seed.canvas);
    setField(box, LayoutKind::Plain, QSize(box->sizeHint().width(), kRowHeight));
    connect(box, &QCheckBox::clicked, this, [this](bool checked) { choose(checked ? 1 : 0); });
}

void BoolControl::showItem(int item) {
    static_cast<QCheckBox&>(field()).setChecked(item != 0);
}

}  // namespace tavora::studio
