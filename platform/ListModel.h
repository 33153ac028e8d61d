// The rows of a list, in the form in which Qt's view reads them. For the platform's own files.
#pragma once

#include <QAbstractTableModel>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/Listbox.h"

class ListModel : public QAbstractTableModel {
  public:
    struct Cell {
        std::string text;
        Variant tag;
        int type = 0;
    };

    // Beside Qt's roles: the hint that is shown in the cell now, empty for none.
    static constexpr int kHintRole = Qt::UserRole;

    explicit ListModel(std::vector<std::string> headings) : mHeadings(std::move(headings)) {}

    // nullptr outside the table.
    Cell* At(std::int64_t row, std::int64_t column);
    // Tells the view that a cell has another text.
    void Changed(std::int64_t row, std::int64_t column);
    void Append(const std::vector<std::string>& texts);
    void Remove(std::int64_t row);
    void Clear();
    void Hint(std::string_view hint) { mHint = hint; }

    // The user has changed a cell's text.
    std::function<void(int row, int column)> Edited;

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;
    // Takes a text of the user's.
    bool setData(const QModelIndex& index, const QVariant& value, int role) override;

  private:
    const Cell& At(const QModelIndex& index) const;

    std::vector<std::string> mHeadings;
    std::vector<std::vector<Cell>> mRows;
    std::string mHint;
};
