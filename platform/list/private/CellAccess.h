// What a screen reader is told of a cell of a list.
#pragma once

class QAccessibleInterface;
class QTableView;

// For a place in the table, whatever row stands there at the time. Row -1 has the headings of the
// columns, and column -1 those of the rows, which are empty. Owned by whom it is registered with.
QAccessibleInterface* NewCellAccess(QTableView& view, int row, int column);
