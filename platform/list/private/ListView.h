// The view of a list: what the mouse and the keyboard do.
#pragma once

#include <QPersistentModelIndex>
#include <QTableView>
#include <functional>

// At most one row is selected. A click on the editable cell of the selected row opens its editor
// with all text selected. F2 and Return on the selected row do the same; a typed character replaces
// the text. The editor opens as soon as the mouse button is released, so it gets the next key.
class ListView : public QTableView {
  public:
    explicit ListView(QWidget* parent);

    // All columns but the first have this width; the first takes the rest.
    void SetFixedWidth(int width);

    int SelectedRow() const;  // -1 for none
    void SelectRow(int row);  // brings it into view; nothing outside the table
    void EditRow(int row);    // nothing in a row without an editable cell
    void FocusNeighbour(bool next) { focusNextPrevChild(next); }

    // Switches off Qt's search for a row by typing.
    void keyboardSearch(const QString&) override {}

    std::function<void()> DoubleClicked;  // on the rows or on the free space below them
    std::function<void()> DeletePressed;  // with a row selected

  protected:
    void keyPressEvent(QKeyEvent* event) override;
    void inputMethodEvent(QInputMethodEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void changeEvent(QEvent* event) override;

  private:
    QModelIndex EditableCell(int row) const;
    bool TakeKey(QKeyEvent& event);

    // The cell that is edited when the button is let go over it.
    QPersistentModelIndex mPressed;
};
