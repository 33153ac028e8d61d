// Paints the cells of a list and makes the editor of one.
#pragma once

#include <functional>

class Graphics;
class QAbstractItemDelegate;
class QTableView;

// For a view that NewListView has made, which owns it. `paintBackground` runs before a cell is
// painted; true means that nothing more is painted.
QAbstractItemDelegate* NewCellDelegate(
    QTableView& view, std::function<bool(Graphics& graphics, int row, int column)> paintBackground);
