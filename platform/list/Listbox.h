#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/controls/Control.h"
#include "platform/list/Cell.h"
#include "platform/list/Graphics.h"

// A table of texts with headings. At most one row is selected. Rows and columns count
// from 0. Reading outside the table gives an empty value, writing there does nothing.
//
// A click selects. F2, Return or a click on the editable cell of the selected row edits that cell
// in place, and typing replaces its text; leaving it in any way but by Escape commits.
class Listbox : public RectControl {
  public:
    // `headings` gives the number of columns. All columns but the first have a fixed width; the
    // first takes the rest.
    Listbox(Window& owner, std::string name, const std::vector<std::string>& headings,
            int fixedWidth);

    std::string Cell(std::int64_t row, std::int64_t column) const;
    // Sets a cell's text without raising CellTextChange.
    void Cell(std::int64_t row, std::int64_t column, std::string_view text);
    Variant CellTag(std::int64_t row, std::int64_t column) const;
    void CellTag(std::int64_t row, std::int64_t column, const Variant& tag);
    // With kEditableCell the user can edit the cell, with other types not.
    void CellType(std::int64_t row, std::int64_t column, int type);
    // A pale text that an empty editable cell shows if the first cell of its row isn't empty. It
    // isn't part of the cell's text.
    void CellHint(std::string_view hint);

    // The selected row, -1 for none.
    std::int64_t ListIndex() const;
    std::int64_t ListCount() const;
    std::int64_t LastIndex() const { return ListCount() - 1; }

    // Appends a row with the given texts from column 0 on.
    void AddRow(const std::vector<std::string>& texts);
    // RemoveRow and DeleteAllRows clear the selection, and raise Change if a row was selected.
    void RemoveRow(std::int64_t row);
    void DeleteAllRows();

    void RaiseOpen() override;

    std::function<void(Listbox&)> Open;
    std::function<void(Listbox&)> Change;
    // The user double-clicked anywhere in the list. An open edit has been committed before.
    std::function<void(Listbox&)> DoubleClick;
    // The user pressed Delete while a row was selected and no cell was being edited.
    std::function<void(Listbox&)> DeleteKey;
    // The user changed a cell's text.
    std::function<void(Listbox&, std::int64_t row, std::int64_t column)> CellTextChange;
    // Runs before a cell is painted. Return false to let the control paint the rest of the cell.
    std::function<bool(Listbox&, Graphics&, std::int64_t row, std::int64_t column)>
        CellBackgroundPaint;

  private:
    void RemoveRows(std::int64_t row, std::int64_t count);

    bool mClearing = false;  // Change waits until the rows are gone
};
