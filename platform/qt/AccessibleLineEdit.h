// One-line fields as screen readers see them.
#pragma once

// Gives each editable QLineEdit, in dialogs and lists too, an AccessibleLine as its accessible
// object. Qt's own object never returns from some questions. Call it once, before the first field.
void InstallAccessibleLineEdit();
