// What the mouse and the keyboard do on a list.
//
// One row at most is selected. A click on the editable cell of the selected row edits it, with all
// of its text selected; so do F2 and Return on the selected row, and a typed character replaces the
// text. The editor is open as soon as the button is let go, so no key after it can miss it.
#pragma once

#include <functional>

class QObject;
class QTableView;
class QWidget;

struct ListViewEvents {
    std::function<void()> DoubleClicked;  // on the rows or on the free space below them
    std::function<void()> DeletePressed;  // with a row selected
};

QTableView* NewListView(QWidget* parent, ListViewEvents events);

// nullptr for an object that is none.
QTableView* AsListView(QObject* object);

// These take what NewListView has made, with a model.

// All columns but the first have this width; the first takes the rest.
void SetFixedWidth(QTableView& view, int width);
int SelectedRow(const QTableView& view);    // -1 for none
void SelectRow(QTableView& view, int row);  // brings it into view
void EditRow(QTableView& view, int row);    // nothing in a row without an editable cell
void FocusNeighbour(QTableView& view, bool next);
void RaiseDoubleClicked(QTableView& view);
