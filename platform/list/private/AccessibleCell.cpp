#include "platform/list/private/AccessibleCell.h"

#include <QAccessible>
#include <QHeaderView>
#include <QPointer>

#include "platform/list/private/ListModel.h"
#include "platform/list/private/ListView.h"
#include "platform/qt/AccessibleLine.h"

namespace {

class AccessibleCell : public QAccessibleInterface,
                       public QAccessibleTableCellInterface,
                       public QAccessibleActionInterface,
                       public AccessibleLine {
  public:
    AccessibleCell(ListView& view, int row, int column)
        : mView(&view), mRow(row), mColumn(column) {}

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
    using AccessibleLine::text;
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

    // A cell has no caret and no selection. Its editor has them, and is a widget of its own.
    void selection(int, int* start, int* end) const override { *start = *end = 0; }
    int selectionCount() const override { return 0; }
    void addSelection(int, int) override {}
    void removeSelection(int) override {}
    void setSelection(int, int, int) override {}
    int cursorPosition() const override { return 0; }
    void setCursorPosition(int) override {}
    QRect characterRect(int) const override { return rect(); }
    int offsetAtPoint(const QPoint&) const override { return -1; }
    void scrollToSubstring(int, int) override { mView->scrollTo(Index()); }

  protected:
    QString WholeText() const override { return Index().data().toString(); }
    void Replace(int start, int length, const QString& text) override {
        setText(QAccessible::Value, WholeText().replace(start, length, text));
    }

  private:
    QModelIndex Index() const { return mView->model()->index(mRow, mColumn); }
    bool IsEditable() const { return isValid() && Index().flags().testFlag(Qt::ItemIsEditable); }

    QPointer<ListView> mView;
    int mRow, mColumn;
};

void* AccessibleCell::interface_cast(QAccessible::InterfaceType type) {
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

QAccessible::Role AccessibleCell::role() const {
    if (mRow < 0) return QAccessible::ColumnHeader;
    return mColumn < 0 ? QAccessible::RowHeader : QAccessible::Cell;
}

QAccessible::State AccessibleCell::state() const {
    QAccessible::State state;
    if (!isValid() || role() != QAccessible::Cell) return state;
    state.selectable = state.focusable = true;
    state.selected = isSelected();
    state.focused = mView->hasFocus() && mView->currentIndex() == Index();
    state.editable = IsEditable();
    state.invisible = !mView->viewport()->rect().intersects(mView->visualRect(Index()));
    return state;
}

QRect AccessibleCell::rect() const {
    if (!isValid() || mColumn < 0) return {};
    const QHeaderView* header = mView->horizontalHeader();
    if (mRow < 0)
        return {header->mapToGlobal(QPoint(header->sectionViewportPosition(mColumn), 0)),
                QSize(header->sectionSize(mColumn), header->height())};
    const QRect place = mView->visualRect(Index());
    return {mView->viewport()->mapToGlobal(place.topLeft()), place.size()};
}

QString AccessibleCell::text(QAccessible::Text kind) const {
    if (!isValid() || mColumn < 0) return {};
    if (mRow < 0)
        return kind == QAccessible::Name
                   ? mView->model()->headerData(mColumn, Qt::Horizontal).toString()
                   : QString();
    switch (kind) {
        case QAccessible::Name:
            return WholeText();
        case QAccessible::Value:
            return IsEditable() ? WholeText() : QString();
        case QAccessible::Description:
            return Index().data(ListModel::kHintRole).toString();
        default:
            return {};
    }
}

QList<QAccessibleInterface*> AccessibleCell::columnHeaderCells() const {
    return {table()->child(mColumn + 1)};
}

QStringList AccessibleCell::actionNames() const {
    if (!isValid() || role() != QAccessible::Cell) return {};
    return IsEditable() ? QStringList{setFocusAction(), pressAction()}
                        : QStringList{setFocusAction()};
}

void AccessibleCell::doAction(const QString& name) {
    if (!actionNames().contains(name)) return;
    mView->setFocus();
    mView->SelectRow(mRow);
    if (name == pressAction()) mView->EditRow(mRow);
}

}  // namespace

QAccessibleInterface* NewAccessibleCell(ListView& view, int row, int column) {
    return new AccessibleCell(view, row, column);
}
