// The rows of a list, and the Qt model through which a view reads them.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/list/Cell.h"

class QAbstractItemModel;

class ListModel {
  public:
    struct Cell {
        std::string text;
        Variant tag;
        int type = 0;
    };

    // Beside Qt's roles: the hint that is shown in the cell now, empty for none.
    static constexpr int kHintRole = 0x0100;

    explicit ListModel(std::vector<std::string> headings);
    ~ListModel();

    // For a view, which must let go of it before this object dies.
    QAbstractItemModel* Native() const;

    // nullptr outside the table.
    Cell* At(std::int64_t row, std::int64_t column);
    std::int64_t RowCount() const { return static_cast<std::int64_t>(mRows.size()); }
    // Tells the view that a cell has another text.
    void Changed(std::int64_t row, std::int64_t column);
    void Append(const std::vector<std::string>& texts);
    void Remove(std::int64_t row);
    void Clear();
    void Hint(std::string_view hint) { mHint = hint; }

    // The user has changed a cell's text.
    std::function<void(int row, int column)> Edited;

  private:
    class Table;

    std::vector<std::string> mHeadings;
    std::vector<std::vector<Cell>> mRows;
    std::string mHint;
    std::unique_ptr<Table> mTable;
};
