#pragma once

#include <functional>

#include "platform/controls/Control.h"

// A list of texts. One of them is selected, or none.
class PopupMenu : public RectControl {
  public:
    PopupMenu(Window& owner, std::string name);

    // Appends a row and selects nothing.
    void AddRow(std::string_view text);
    // Raises Change if a row was selected.
    void DeleteAllRows();

    std::string List(std::int64_t row) const;
    std::int64_t ListCount() const;
    // The selected row, -1 for none. Setting a number that is no row selects none. Each call of the
    // setter raises Change.
    std::int64_t ListIndex() const;
    void ListIndex(std::int64_t row);
    // The selected row's text, empty for none.
    std::string Text() const;

    void RaiseOpen() override;

    std::function<void(PopupMenu&)> Open;
    std::function<void(PopupMenu&)> Change;
};
