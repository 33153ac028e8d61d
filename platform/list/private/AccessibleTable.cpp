#include "platform/list/private/AccessibleTable.h"

#include <QAccessibleWidget>
#include <QHash>
#include <QHeaderView>
#include <utility>

#include "platform/list/private/AccessibleCell.h"
#include "platform/list/private/ListView.h"

namespace {

// The children have the same numbers as in the changes that Qt's view announces: a row of headings
// comes first, and a heading before each row.
class AccessibleTable : public QAccessibleWidget, public QAccessibleTableInterface {
  public:
    explicit AccessibleTable(ListView& view)
        : QAccessibleWidget(&view, QAccessible::Table), mView(view) {}
    AccessibleTable(const AccessibleTable&) = delete;
    AccessibleTable& operator=(const AccessibleTable&) = delete;
    ~AccessibleTable() override {
        for (const QAccessible::Id id : std::as_const(mCells))
            QAccessible::deleteAccessibleInterface(id);
    }

    void* interface_cast(QAccessible::InterfaceType type) override {
        return type == QAccessible::TableInterface ? static_cast<QAccessibleTableInterface*>(this)
                                                   : QAccessibleWidget::interface_cast(type);
    }
    int childCount() const override { return (rowCount() + 1) * (columnCount() + 1); }
    QAccessibleInterface* child(int index) const override;
    QAccessibleInterface* childAt(int x, int y) const override {
        return CellOf(mView.indexAt(mView.viewport()->mapFromGlobal(QPoint(x, y))));
    }
    QAccessibleInterface* focusChild() const override { return CellOf(mView.currentIndex()); }
    int indexOfChild(const QAccessibleInterface* child) const override {
        const auto* cell = dynamic_cast<const QAccessibleTableCellInterface*>(child);
        return cell ? IndexOf(cell->rowIndex(), cell->columnIndex()) : -1;
    }

    QAccessibleInterface* caption() const override { return nullptr; }
    QAccessibleInterface* summary() const override { return nullptr; }
    // Row and column -1 have the headings. Returns nullptr outside the table.
    QAccessibleInterface* cellAt(int row, int column) const override {
        const bool inside = row >= -1 && row < rowCount() && column >= -1 && column < columnCount();
        return inside ? child(IndexOf(row, column)) : nullptr;
    }
    int rowCount() const override { return mView.model() ? mView.model()->rowCount() : 0; }
    int columnCount() const override { return mView.model() ? mView.model()->columnCount() : 0; }
    QString rowDescription(int) const override { return {}; }
    QString columnDescription(int column) const override {
        const auto* heading = cellAt(-1, column);
        return heading ? heading->text(QAccessible::Name) : QString();
    }

    int selectedRowCount() const override { return static_cast<int>(selectedRows().size()); }
    QList<int> selectedRows() const override {
        const int row = rowCount() > 0 ? mView.SelectedRow() : -1;
        return row < 0 ? QList<int>() : QList<int>{row};
    }
    bool isRowSelected(int row) const override { return selectedRows().contains(row); }
    int selectedColumnCount() const override { return 0; }
    QList<int> selectedColumns() const override { return {}; }
    bool isColumnSelected(int) const override { return false; }
    int selectedCellCount() const override { return static_cast<int>(selectedCells().size()); }
    QList<QAccessibleInterface*> selectedCells() const override {
        QList<QAccessibleInterface*> cells;
        for (const int row : selectedRows())
            for (int column = 0; column < columnCount(); ++column) cells += cellAt(row, column);
        return cells;
    }
    bool selectRow(int row) override {
        mView.SelectRow(row);
        return isRowSelected(row);
    }
    bool unselectRow(int row) override {
        if (isRowSelected(row)) mView.clearSelection();
        return !isRowSelected(row);
    }
    bool selectColumn(int) override { return false; }
    bool unselectColumn(int) override { return false; }
    void modelChange(QAccessibleTableModelChangeEvent*) override {}

  private:
    int IndexOf(int row, int column) const { return (row + 1) * (columnCount() + 1) + column + 1; }
    QAccessibleInterface* CellOf(const QModelIndex& index) const {
        return index.isValid() ? cellAt(index.row(), index.column()) : nullptr;
    }

    ListView& mView;
    mutable QHash<int, QAccessible::Id> mCells;  // by child's index; Qt owns them
};

QAccessibleInterface* AccessibleTable::child(int index) const {
    if (index < 0 || index >= childCount()) return nullptr;
    if (const auto known = mCells.constFind(index); known != mCells.constEnd())
        return QAccessible::accessibleInterface(*known);
    const int columns = columnCount() + 1;
    auto* cell = NewAccessibleCell(mView, index / columns - 1, index % columns - 1);
    mCells.insert(index, QAccessible::registerAccessibleInterface(cell));
    return cell;
}

QAccessibleInterface* Create(const QString&, QObject* object) {
    auto* view = dynamic_cast<ListView*>(object);
    return view ? new AccessibleTable(*view) : nullptr;
}

}  // namespace

void InstallAccessibleTable() { QAccessible::installFactory(Create); }
