// The model behind a list: its rows, and the hint of its empty cells.
#pragma once

#include <QStandardItemModel>
#include <functional>

// The program changes a row through its items. The editor of a cell and screen readers call
// setData, so a change there is the user's.
class ListModel : public QStandardItemModel {
  public:
    enum Role {
        kHintRole = Qt::UserRole,  // the hint that is shown in the cell now; empty for none
        kTagRole,                  // the Variant that is kept with the cell
    };

    using QStandardItemModel::QStandardItemModel;

    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int role = Qt::EditRole) override;

    // See Listbox::CellHint.
    QString Hint;
    // The user changed a cell's text.
    std::function<void(int row, int column)> Edited;
};
