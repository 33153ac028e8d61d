#include "platform/ListModel.h"

#include <algorithm>

#include "platform/QtText.h"

ListModel::Cell* ListModel::At(std::int64_t row, std::int64_t column) {
    if (row < 0 || row >= rowCount() || column < 0 || column >= columnCount()) return nullptr;
    return &mRows[static_cast<std::size_t>(row)][static_cast<std::size_t>(column)];
}

const ListModel::Cell& ListModel::At(const QModelIndex& index) const {
    return mRows[static_cast<std::size_t>(index.row())][static_cast<std::size_t>(index.column())];
}

// Up to the row's end: whether a cell shows its hint depends on the row's first cell.
void ListModel::Changed(std::int64_t row, std::int64_t column) {
    emit dataChanged(index(static_cast<int>(row), static_cast<int>(column)),
                     index(static_cast<int>(row), columnCount() - 1));
}

void ListModel::Append(const std::vector<std::string>& texts) {
    std::vector<Cell> cells(mHeadings.size());
    for (std::size_t i = 0; i < std::min(texts.size(), cells.size()); ++i) cells[i].text = texts[i];
    beginInsertRows({}, rowCount(), rowCount());
    mRows.push_back(std::move(cells));
    endInsertRows();
}

void ListModel::Remove(std::int64_t row) {
    beginRemoveRows({}, static_cast<int>(row), static_cast<int>(row));
    mRows.erase(mRows.begin() + row);
    endRemoveRows();
}

void ListModel::Clear() {
    beginResetModel();
    mRows.clear();
    endResetModel();
}

int ListModel::rowCount(const QModelIndex&) const { return static_cast<int>(mRows.size()); }

int ListModel::columnCount(const QModelIndex&) const { return static_cast<int>(mHeadings.size()); }

QVariant ListModel::data(const QModelIndex& index, int role) const {
    const Cell& cell = At(index);
    if (role == Qt::DisplayRole || role == Qt::EditRole) return ToQt(cell.text);
    const bool misses = role == kHintRole && cell.text.empty() && cell.type == Listbox::kEditable &&
                        !At(index.siblingAtColumn(0)).text.empty();
    return misses ? ToQt(mHint) : QVariant();
}

QVariant ListModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole) return {};
    return ToQt(mHeadings[static_cast<std::size_t>(section)]);
}

Qt::ItemFlags ListModel::flags(const QModelIndex& index) const {
    const auto flags = QAbstractTableModel::flags(index);
    const bool editable = index.isValid() && At(index).type == Listbox::kEditable;
    return editable ? flags | Qt::ItemIsEditable : flags;
}

bool ListModel::setData(const QModelIndex& index, const QVariant& value, int) {
    QString shown = value.toString();
    Cell& cell = *At(index.row(), index.column());
    if (FromQt(shown) == cell.text) return true;
    // A cell is one line. An editor shows a pasted line end as a space, so that is what it gives.
    cell.text = FromQt(shown.replace(u'\n', u' ').replace(u'\r', u' '));
    Changed(index.row(), index.column());
    if (Edited) Edited(index.row(), index.column());
    return true;
}
