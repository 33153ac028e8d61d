// What a screen reader is told of a list.
#pragma once

// From now on the program's lists are tables whose editable cells are editable texts. Qt's own
// interface of a table has no way to edit a cell on Linux.
void InstallAccessibleTable();
