// What a screen reader is told of a cell of a list.
#pragma once

class ListView;
class QAccessibleInterface;

// For a place in the table, whatever row stands there at the time. Row -1 has the headings of the
// columns, and column -1 those of the rows, which are empty. The caller registers it with
// QAccessible, which owns it.
QAccessibleInterface* NewAccessibleCell(ListView& view, int row, int column);
