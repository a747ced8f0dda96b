#include "studio/panels/multi_list_control.h"

#include <QHeaderView>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QStyledItemDelegate>
#include <QVBoxLayout>

namespace tavora::studio {
namespace {

constexpr int kRow = 15;
constexpr int kHeader = 18;
constexpr int kTitle = 16;
constexpr int kScrollBar = 12;
constexpr int kMaxColumns = 32;
const QString kCheckMark = QStringLiteral("\x03(i:MIMG_CHECKMARK)");

/// Draws a check mark in cells whose text is kCheckMark.
class CellPainter : public QStyledItemDelegate {
  public:
    using QStyledItemDelegate::QStyledItemDelegate;

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override {
        QStyledItemDelegate::paint(painter, option, index);
        if (!index.data(Qt::UserRole).toBool()) return;
        const bool chosen = option.state.testFlag(QStyle::State_Selected) &&
                            option.state.testFlag(QStyle::State_Active);
        const auto group =
            option.state.testFlag(QStyle::State_Enabled) ? QPalette::Normal : QPalette::Disabled;
        const QColor color =
            option.palette.color(group, chosen ? QPalette::HighlightedText : QPalette::Text);
        const QPointF middle = QRectF(option.rect).center();
        const QPointF tick[] = {middle + QPointF(-4, 0), middle + QPointF(-1, 3),
                                middle + QPointF(4.5, -3.5)};
        painter->save();
        painter->setRenderHint(QPainter::Antialiasing);
        painter->setPen(QPen(color, 1.8, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        painter->drawPolyline(tick, 3);
        painter->restore();
    }
};

}  // namespace

MultiListModel::MultiListModel(const Callbacks& callbacks, QObject* parent)
    : QAbstractTableModel(parent), callbacks_(callbacks) {}

void MultiListModel::reset(void* userData) {
    const int rows =
        callbacks_.rowCount != nullptr ? std::max(callbacks_.rowCount(userData), 0) : 0;
    if (userData == userData_ && rows == rows_ && rows > 0) {
        emit dataChanged(index(0, 0), index(rows_ - 1, columns_ - 1));
        return;
    }
    beginResetModel();
    userData_ = userData;
    rows_ = rows;
    columns_ = 0;
    while (columns_ < kMaxColumns && columnWidth(columns_) > 0)
        ++columns_;
    endResetModel();
}

int MultiListModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : rows_;
}

int MultiListModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : columns_;
}

int MultiListModel::columnWidth(int column) const {
    return callbacks_.columnWidth != nullptr ? callbacks_.columnWidth(userData_, column) : 0;
}

QString MultiListModel::cell(int row, int column) const {
    const char* text =
        callbacks_.cellText != nullptr ? callbacks_.cellText(userData_, row, column) : nullptr;
    return QString::fromUtf8(text);
}

QVariant MultiListModel::data(const QModelIndex& index, int role) const {
    if (role != Qt::DisplayRole && role != Qt::UserRole && role != Qt::AccessibleTextRole &&
        role != Qt::ToolTipRole) {
        return {};
    }
    const QString text = cell(index.row(), index.column());
    const bool marked = text == kCheckMark;
    if (role == Qt::UserRole) return marked;
    if (role == Qt::AccessibleTextRole && marked) return QStringLiteral("chosen");
    return marked ? QString() : text;
}

QVariant MultiListModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole) return {};
    return cell(-1, section);
}

MultiListView::MultiListView(QWidget* parent) : QTableView(parent) {
    setSelectionBehavior(SelectRows);
    setSelectionMode(SingleSelection);
    setEditTriggers(NoEditTriggers);
    setTabKeyNavigation(false);
    setShowGrid(false);
    setWordWrap(false);
    setTextElideMode(Qt::ElideRight);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollMode(ScrollPerPixel);
    setItemDelegate(new CellPainter(this));
    verticalHeader()->hide();
    verticalHeader()->setMinimumSectionSize(kRow);
    verticalHeader()->setDefaultSectionSize(kRow);
    verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    horizontalHeader()->setFixedHeight(kHeader);
    horizontalHeader()->setMinimumSectionSize(8);
    horizontalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    horizontalHeader()->setStretchLastSection(true);
    horizontalHeader()->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    horizontalHeader()->setHighlightSections(false);
    horizontalHeader()->setSectionsClickable(false);
    connect(this, &QTableView::clicked, this,
            [this](const QModelIndex& index) { emit rowPressed(index.row()); });
}

/// The second click of a double click counts as a click too.
void MultiListView::mouseDoubleClickEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton) return;
    const QModelIndex index = indexAt(event->position().toPoint());
    if (index.isValid()) emit rowPressed(index.row());
}

void MultiListView::focusInEvent(QFocusEvent* event) {
    QTableView::focusInEvent(event);
    if (currentIndex().isValid()) selectRow(currentIndex().row());
}

void MultiListView::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Space && currentIndex().isValid()) {
        emit rowPressed(currentIndex().row());
        return;
    }
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) return event->ignore();
    QTableView::keyPressEvent(event);
}

MultiListControl::MultiListControl(const ControlSeed& seed) : PanelControl(seed) {
    MultiListModel::Callbacks list{};
    if (seed.description.type == HOST_VALUE_MULTI_LIST) list = seed.description.of.multiList;
    auto* box = new QWidget(seed.canvas);
    auto* lines = new QVBoxLayout(box);
    lines->setContentsMargins(0, 0, 0, 0);
    lines->setSpacing(0);
    view_ = new MultiListView(box);
    view_->setAccessibleName(seed.label);
    int height = 2 + kHeader + std::clamp(list.visibleRows, 1, 64) * kRow;
    if (!seed.label.isEmpty()) {
        auto* title = new QLabel(seed.label, box);
        title->setFixedHeight(kTitle);
        title->setBuddy(view_);
        lines->addWidget(title);
        height += kTitle;
    }
    lines->addWidget(view_);
    model_ = new MultiListModel(list, view_);
    view_->setModel(model_);
    setField(box, LayoutKind::Plain, QSize(std::max(list.width, 40) + kScrollBar, height));
    connect(view_, &MultiListView::rowPressed, this, [this](int row) {
        row_ = row;
        fire();
    });
}

void MultiListControl::show(const ControlValue& value) {
    row_ = asInteger(value);
    if (row_ >= 0 && row_ < model_->rowCount()) view_->setCurrentIndex(model_->index(row_, 0));
}

void MultiListControl::refresh() {
    const QModelIndex current = view_->currentIndex();
    const int row = current.isValid() ? current.row() : -1;
    model_->reset(userData());
    for (int column = 0; column + 1 < model_->columnCount(); ++column)
        view_->setColumnWidth(column, model_->columnWidth(column));
    if (row >= 0 && row < model_->rowCount()) view_->setCurrentIndex(model_->index(row, 0));
}

}  // namespace tavora::studio
