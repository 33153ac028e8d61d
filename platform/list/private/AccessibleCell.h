// A cell of a list as screen readers see it.
#pragma once

class ListView;
class QAccessibleInterface;

// Returns a new object for a place in the table; it always speaks of the row that is there now. Row
// -1 has the headings of the columns. Column -1 has those of the rows, which are empty. The caller
// registers the object with QAccessible, which owns it.
QAccessibleInterface* NewAccessibleCell(ListView& view, int row, int column);
