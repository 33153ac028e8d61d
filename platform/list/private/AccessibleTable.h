// A list as screen readers see it.
#pragma once

// Makes each list an accessible table whose editable cells are editable texts. Qt's own table
// offers screen readers on Linux no way to edit a cell. Call it once, before the first list.
void InstallAccessibleTable();
