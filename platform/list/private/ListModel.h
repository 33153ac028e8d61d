// The rows of a list as a view reads them.
#pragma once

#include <QStandardItemModel>
#include <functional>

// The program changes a row by its items. The user's changes come by setData, from the editor of a
// cell or from a screen reader.
class ListModel : public QStandardItemModel {
  public:
    enum Role {
        kHintRole = Qt::UserRole,  // the hint that is shown in the cell now; empty for none
        kTagRole,                  // the Variant that is kept with the cell
    };

    using QStandardItemModel::QStandardItemModel;

    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int role = Qt::EditRole) override;

    // The hint of empty cells.
    QString Hint;
    // The user has changed a cell's text.
    std::function<void(int row, int column)> Edited;
};
