#include "platform/list/private/ListModel.h"

#include <QAbstractTableModel>
#include <algorithm>

#include "platform/qt/QtText.h"

static_assert(ListModel::kHintRole == Qt::UserRole);

class ListModel::Table : public QAbstractTableModel {
  public:
    explicit Table(ListModel& model) : mModel(model) {}

    void Changed(int row, int firstColumn) {
        emit dataChanged(index(row, firstColumn), index(row, columnCount() - 1));
    }

    void Insert(int row, std::vector<Cell> cells) {
        beginInsertRows({}, row, row);
        mModel.mRows.insert(mModel.mRows.begin() + row, std::move(cells));
        endInsertRows();
    }

    void Remove(int row) {
        beginRemoveRows({}, row, row);
        mModel.mRows.erase(mModel.mRows.begin() + row);
        endRemoveRows();
    }

    void Clear() {
        beginResetModel();
        mModel.mRows.clear();
        endResetModel();
    }

    int rowCount(const QModelIndex& = {}) const override {
        return static_cast<int>(mModel.RowCount());
    }

    int columnCount(const QModelIndex& = {}) const override {
        return static_cast<int>(mModel.mHeadings.size());
    }

    QVariant data(const QModelIndex& index, int role) const override {
        const Cell& cell = At(index);
        if (role == Qt::DisplayRole || role == Qt::EditRole) return ToQt(cell.text);
        const bool showsHint = role == kHintRole && cell.text.empty() &&
                               cell.type == kEditableCell &&
                               !At(index.siblingAtColumn(0)).text.empty();
        return showsHint ? ToQt(mModel.mHint) : QVariant();
    }

    QVariant headerData(int section, Qt::Orientation orientation, int role) const override {
        if (orientation != Qt::Horizontal || role != Qt::DisplayRole) return {};
        return ToQt(mModel.mHeadings[static_cast<std::size_t>(section)]);
    }

    Qt::ItemFlags flags(const QModelIndex& index) const override {
        const auto flags = QAbstractTableModel::flags(index);
        const bool editable = index.isValid() && At(index).type == kEditableCell;
        return editable ? flags | Qt::ItemIsEditable : flags;
    }

    // Stores a text that the user has entered.
    bool setData(const QModelIndex& index, const QVariant& value, int) override {
        QString shown = value.toString();
        Cell& cell = At(index);
        if (FromQt(shown) == cell.text) return true;
        // A cell is one line. An editor shows a pasted line end as a space, so that is what it
        // gives.
        cell.text = FromQt(shown.replace(u'\n', u' ').replace(u'\r', u' '));
        mModel.Changed(index.row(), index.column());
        if (mModel.Edited) mModel.Edited(index.row(), index.column());
        return true;
    }

  private:
    Cell& At(const QModelIndex& index) const { return *mModel.At(index.row(), index.column()); }

    ListModel& mModel;
};

ListModel::ListModel(std::vector<std::string> headings)
    : mHeadings(std::move(headings)), mTable(std::make_unique<Table>(*this)) {}

ListModel::~ListModel() = default;

QAbstractItemModel* ListModel::Native() const { return mTable.get(); }

ListModel::Cell* ListModel::At(std::int64_t row, std::int64_t column) {
    const bool inside = row >= 0 && row < RowCount() && column >= 0 &&
                        column < static_cast<std::int64_t>(mHeadings.size());
    return inside ? &mRows[static_cast<std::size_t>(row)][static_cast<std::size_t>(column)]
                  : nullptr;
}

// Up to the row's end: whether a cell shows its hint depends on the row's first cell.
void ListModel::Changed(std::int64_t row, std::int64_t column) {
    mTable->Changed(static_cast<int>(row), static_cast<int>(column));
}

void ListModel::Append(const std::vector<std::string>& texts) {
    std::vector<Cell> cells(mHeadings.size());
    for (std::size_t i = 0; i < std::min(texts.size(), cells.size()); ++i) cells[i].text = texts[i];
    mTable->Insert(static_cast<int>(RowCount()), std::move(cells));
}

void ListModel::Remove(std::int64_t row) { mTable->Remove(static_cast<int>(row)); }

void ListModel::Clear() { mTable->Clear(); }
