// What a screen reader is told of a cell of a list. For the platform's own files.
#pragma once

#include <QAccessible>
#include <QPointer>
#include <QTableView>

#include "platform/qt/LineText.h"

// A place in the table, whatever row stands there at the time. Row -1 has the headings of the
// columns, and column -1 those of the rows, which are empty.
class CellAccess : public QAccessibleInterface,
                   public QAccessibleTableCellInterface,
                   public QAccessibleActionInterface,
                   public LineText {
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
    using LineText::text;
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

    QPointer<QTableView> mView;
    int mRow, mColumn;
};
