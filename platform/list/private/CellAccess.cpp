#include "platform/list/private/CellAccess.h"

#include <QHeaderView>

#include "platform/list/private/ListModel.h"
#include "platform/list/private/ListView.h"

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
            return WholeText();
        case QAccessible::Value:
            return IsEditable() ? WholeText() : QString();
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
