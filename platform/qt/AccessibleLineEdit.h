// What a screen reader is told of one-line fields.
#pragma once

// From now on each QLineEdit that the user can edit, in dialogs and lists too, has an accessible
// object of the program's. Qt's own never returns from some questions; see AccessibleLine.
void InstallAccessibleLineEdit();
