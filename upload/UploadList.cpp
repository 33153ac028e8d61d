// The list of images. The control is the model: its rows are the images of the command.
#include "flash/EspWin.h"

// Puts a new file into the free row (a row without a file), or else into a new row at the end. A
// free row is always the only row: a new row is filled at once, and Delete empties only the last
// one.
void EspWin::SetUploadFileToList(const FolderItemRef& file, const std::string& address) {
    Listbox& list = ulb();
    std::int64_t row = 0;
    if (!list.Cell(row, 0).empty()) {
        list.AddRow({""});
        row = list.LastIndex();
    }
    list.Cell(row, 0, file->Name() + " (" + file->NativePath() + ")");
    list.CellTag(row, 0, file);
    list.CellType(row, 1, kEditableCell);
    list.Cell(row, 1, address);
}

void EspWin::ulb_Open(Listbox& sender) { sender.CellType(0, 1, kEditableCell); }

void EspWin::ulb_Change(Listbox& sender) { DeletePB().Enabled(sender.ListIndex() >= 0); }

void EspWin::ulb_CellTextChange(Listbox&, std::int64_t, std::int64_t) { MakeCommand(); }

void EspWin::ulb_DoubleClick(Listbox&) { SelectUploadFile(); }

bool EspWin::ulb_CellBackgroundPaint(Listbox&, Graphics& g, std::int64_t row, std::int64_t) {
    // Rows count from 0: the first row is even. CellDelegate.cpp writes the hint on both colours.
    constexpr Color kEvenRow = 0xD2FFF3;
    constexpr Color kOddRow = 0xD2EDF5;
    g.ForeColor(row % 2 == 0 ? kEvenRow : kOddRow);
    g.FillRect(0, 0, g.Width(), g.Height());
    return false;
}

// A row that is the only one stays, without its file but with its address.
void EspWin::DeletePB_Action(PushButton&) {
    Listbox& list = ulb();
    const std::int64_t i = list.ListIndex();
    list.CellTag(i, 0, {});
    list.Cell(i, 0, "");
    if (list.ListCount() > 1) list.RemoveRow(i);
    MakeCommand();
}

// The key does what the button does.
void EspWin::ulb_DeleteKey(Listbox&) {
    if (DeletePB().Enabled()) DeletePB_Action(DeletePB());
}

void EspWin::UploadEF_TextChange(TextArea&) { MakeCommand(); }

void EspWin::AddressEF_TextChange(TextField&) { MakeCommand(); }
