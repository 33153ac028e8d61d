#include "platform/list/private/ListAccess.h"

#include <QAccessible>
#include <QAccessibleWidget>
#include <QHash>
#include <QHeaderView>
#include <QPointer>
#include <QTableView>
#include <algorithm>
#include <utility>

#include "platform/list/private/ListModel.h"
#include "platform/list/private/ListView.h"

namespace {

// A place in the table, whatever row stands there at the time. Row -1 has the headings of the
// columns, and column -1 those of the rows, which are empty.
class CellAccess : public QAccessibleInterface,
                   public QAccessibleTableCellInterface,
                   public QAccessibleActionInterface,
                   public QAccessibleTextInterface,
                   public QAccessibleEditableTextInterface {
  public:
    CellAccess(QTableView& view, int row, int column) : mView(&view), mRow(row), mColumn(column) {}

    bool isValid() const override {
        const QAbstractItemModel* model = mView ? mView->model() : nullptr;
        return model != nullptr && mRow < model->rowCount() && mColumn < model->columnCount();
    }
    QObject* object() const override { return nullptr; }
    QAccessibleInterface* parent() const override { return table(); }
    QAccessibleInterface* child(int) const override { return nullptr; }
    QAccessibleInterface* childAt(int, int) const override { return nullptr; }
    int childCount() const override { return 0; }
    int indexOfChild(const QAccessibleInterface*) const override { return -1; }
    void* interface_cast(QAccessible::InterfaceType type) override;

    QAccessible::Role role() const override;
    QAccessible::State state() const override;
    QRect rect() const override;
    QString text(QAccessible::Text kind) const override;
    void setText(QAccessible::Text, const QString& text) override {
        if (IsEditable()) mView->model()->setData(Index(), text);
    }

    bool isSelected() const override { return mView->selectionModel()->isSelected(Index()); }
    int rowIndex() const override { return mRow; }
    int columnIndex() const override { return mColumn; }
    int rowExtent() const override { return 1; }
    int columnExtent() const override { return 1; }
    QList<QAccessibleInterface*> rowHeaderCells() const override { return {}; }
    QList<QAccessibleInterface*> columnHeaderCells() const override;
    QAccessibleInterface* table() const override {
        return QAccessible::queryAccessibleInterface(mView);
    }

    QStringList actionNames() const override;
    void doAction(const QString& name) override;
    QStringList keyBindingsForAction(const QString&) const override { return {}; }

    // The text as a whole: a caret and a selection are the editor's, which is a widget.
    void selection(int, int* start, int* end) const override { *start = *end = 0; }
    int selectionCount() const override { return 0; }
    void addSelection(int, int) override {}
    void removeSelection(int) override {}
    void setSelection(int, int, int) override {}
    int cursorPosition() const override { return 0; }
    void setCursorPosition(int) override {}
    QString text(int start, int end) const override { return Text().mid(start, end - start); }
    int characterCount() const override { return static_cast<int>(Text().size()); }
    QRect characterRect(int) const override { return rect(); }
    int offsetAtPoint(const QPoint&) const override { return -1; }
    void scrollToSubstring(int, int) override { mView->scrollTo(Index()); }
    QString attributes(int, int* start, int* end) const override {
        *start = 0;
        *end = characterCount();
        return {};
    }

    void deleteText(int start, int end) override { replaceText(start, end, {}); }
    void insertText(int at, const QString& text) override {
        at = std::clamp(at, 0, characterCount());
        replaceText(at, at, text);
    }
    // Screen readers may give any numbers. A negative end means the end of the text.
    void replaceText(int start, int end, const QString& text) override {
        const int size = characterCount();
        start = std::clamp(start, 0, size);
        end = end < 0 ? size : std::clamp(end, start, size);
        setText(QAccessible::Value, Text().replace(start, end - start, text));
    }

  private:
    QModelIndex Index() const { return mView->model()->index(mRow, mColumn); }
    QString Text() const { return Index().data().toString(); }
    bool IsEditable() const { return isValid() && Index().flags().testFlag(Qt::ItemIsEditable); }

    QPointer<QTableView> mView;
    int mRow, mColumn;
};

void* CellAccess::interface_cast(QAccessible::InterfaceType type) {
    switch (type) {
        case QAccessible::TableCellInterface:
            return static_cast<QAccessibleTableCellInterface*>(this);
        case QAccessible::ActionInterface:
            return actionNames().isEmpty() ? nullptr
                                           : static_cast<QAccessibleActionInterface*>(this);
        case QAccessible::TextInterface:
            return IsEditable() ? static_cast<QAccessibleTextInterface*>(this) : nullptr;
        case QAccessible::EditableTextInterface:
            return IsEditable() ? static_cast<QAccessibleEditableTextInterface*>(this) : nullptr;
        default:
            return nullptr;
    }
}

QAccessible::Role CellAccess::role() const {
    if (mRow < 0) return QAccessible::ColumnHeader;
    return mColumn < 0 ? QAccessible::RowHeader : QAccessible::Cell;
}

QAccessible::State CellAccess::state() const {
    QAccessible::State state;
    if (!isValid() || role() != QAccessible::Cell) return state;
    state.selectable = state.focusable = true;
    state.selected = isSelected();
    state.focused = mView->hasFocus() && mView->currentIndex() == Index();
    state.editable = IsEditable();
    state.invisible = !mView->viewport()->rect().intersects(mView->visualRect(Index()));
    return state;
}

QRect CellAccess::rect() const {
    if (!isValid() || mColumn < 0) return {};
    const QHeaderView* header = mView->horizontalHeader();
    if (mRow < 0)
        return {header->mapToGlobal(QPoint(header->sectionViewportPosition(mColumn), 0)),
                QSize(header->sectionSize(mColumn), header->height())};
    const QRect place = mView->visualRect(Index());
    return {mView->viewport()->mapToGlobal(place.topLeft()), place.size()};
}

QString CellAccess::text(QAccessible::Text kind) const {
    if (!isValid() || mColumn < 0) return {};
    if (mRow < 0)
        return kind == QAccessible::Name
                   ? mView->model()->headerData(mColumn, Qt::Horizontal).toString()
                   : QString();
    switch (kind) {
        case QAccessible::Name:
            return Text();
        case QAccessible::Value:
            return IsEditable() ? Text() : QString();
        case QAccessible::Description:
            return Index().data(ListModel::kHintRole).toString();
        default:
            return {};
    }
}

QList<QAccessibleInterface*> CellAccess::columnHeaderCells() const {
    return {table()->child(mColumn + 1)};
}

QStringList CellAccess::actionNames() const {
    if (!isValid() || role() != QAccessible::Cell) return {};
    return IsEditable() ? QStringList{setFocusAction(), pressAction()}
                        : QStringList{setFocusAction()};
}

void CellAccess::doAction(const QString& name) {
    if (!actionNames().contains(name)) return;
    mView->setFocus();
    SelectRow(*mView, mRow);
    if (name == pressAction()) EditRow(*mView, mRow);
}

// The children are counted as Qt's view counts them in what it announces: a row of headings first,
// and a heading before each row.
class TableAccess : public QAccessibleWidget, public QAccessibleTableInterface {
  public:
    explicit TableAccess(QTableView& view)
        : QAccessibleWidget(&view, QAccessible::Table), mView(view) {}
    TableAccess(const TableAccess&) = delete;
    TableAccess& operator=(const TableAccess&) = delete;
    ~TableAccess() override {
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
        const auto* cell = dynamic_cast<const CellAccess*>(child);
        return cell ? IndexOf(cell->rowIndex(), cell->columnIndex()) : -1;
    }

    QAccessibleInterface* caption() const override { return nullptr; }
    QAccessibleInterface* summary() const override { return nullptr; }
    // Row and column -1 have the headings. nullptr outside the table.
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
        const int row = rowCount() > 0 ? SelectedRow(mView) : -1;
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
        SelectRow(mView, row);
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

    QTableView& mView;
    mutable QHash<int, QAccessible::Id> mCells;  // by child's index; Qt owns them
};

QAccessibleInterface* TableAccess::child(int index) const {
    if (index < 0 || index >= childCount()) return nullptr;
    if (const auto known = mCells.constFind(index); known != mCells.constEnd())
        return QAccessible::accessibleInterface(*known);
    const int columns = columnCount() + 1;
    auto* cell = new CellAccess(mView, index / columns - 1, index % columns - 1);
    mCells.insert(index, QAccessible::registerAccessibleInterface(cell));
    return cell;
}

QAccessibleInterface* Create(const QString&, QObject* object) {
    QTableView* view = AsListView(object);
    return view ? new TableAccess(*view) : nullptr;
}

}  // namespace

void InstallListAccess() {
    static bool installed = false;
    if (!std::exchange(installed, true)) QAccessible::installFactory(Create);
}
