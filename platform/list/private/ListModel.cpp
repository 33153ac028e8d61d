#include "platform/list/private/ListModel.h"

#include "platform/qt/LineEdit.h"

QVariant ListModel::data(const QModelIndex& index, int role) const {
    if (role != kHintRole) return QStandardItemModel::data(index, role);
    const bool isShown = index.data().toString().isEmpty() &&
                         flags(index).testFlag(Qt::ItemIsEditable) &&
                         !index.siblingAtColumn(0).data().toString().isEmpty();
    return isShown ? Hint : QVariant();
}

bool ListModel::setData(const QModelIndex& index, const QVariant& value, int role) {
    // Qt would add a row for an index outside the table.
    if (role != Qt::EditRole || !checkIndex(index, CheckIndexOption::IndexIsValid)) return false;
    const QString text = OneLine(value.toString());
    if (text == index.data().toString()) return true;
    QStandardItemModel::setData(index, text, role);
    if (Edited) Edited(index.row(), index.column());
    return true;
}
