#pragma once

#include <QAbstractTableModel>
#include <QTableView>

#include "studio/panels/control.h"

namespace tavora::studio {

/// The rows of a multi-list, which it gets from the module when they are shown. The number of rows
/// is read only by reset().
class MultiListModel : public QAbstractTableModel {
    Q_OBJECT
  public:
    using Callbacks = decltype(HostControlDescription::of.multiList);
    MultiListModel(const Callbacks& callbacks, QObject* parent);

    /// Reads the rows and columns again, for `userData`.
    void reset(void* userData);

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    /// Qt::UserRole: whether the cell shows a check mark.
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    int columnWidth(int column) const;

  private:
    QString cell(int row, int column) const;

    Callbacks callbacks_;
    void* userData_ = nullptr;
    int rows_ = 0;
    int columns_ = 0;
};

/// The table; rows can also be pressed by keys.
class MultiListView : public QTableView {
    Q_OBJECT
  public:
    explicit MultiListView(QWidget* parent);

  signals:
    void rowPressed(int row);

  protected:
    void keyPressEvent(QKeyEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
};

/// "MultiListBoxControl": its value is the row that was pressed last.
class MultiListControl : public PanelControl {
  public:
    explicit MultiListControl(const ControlSeed& seed);

    std::vector<QWidget*> focusWidgets() const override { return {view_}; }

  protected:
    ControlValue value() const override { return row_; }
    void show(const ControlValue& value) override;
    void refresh() override;

  private:
    MultiListModel* model_;
    MultiListView* view_;
    int row_ = 0;
};

}  // namespace tavora::studio
