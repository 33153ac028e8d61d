// Which event of which control runs which handler.
#include "flash/EspWin.h"

// clang-format off
void EspWin::AttachHandlers() {
    tooltypePM().Change = [this](PopupMenu& s) { tooltypePM_Change(s); };
    tooltypePM().Open = [this](PopupMenu& s) { tooltypePM_Open(s); };
    StartPB().Action = [this](PushButton& s) { StartPB_Action(s); };
    UploadEF().TextChange = [this](TextArea& s) { UploadEF_TextChange(s); };
    SelectPB().Action = [this](PushButton& s) { SelectPB_Action(s); };
    esptool().Completed = [this](Shell& s) { esptool_Completed(s); };
    esptool().DataAvailable = [this](Shell& s) { esptool_DataAvailable(s); };
    EspToolEF().TextChange = [this](TextArea& s) { EspToolEF_TextChange(s); };
    BaudPM().Open = [this](PopupMenu& s) { BaudPM_Open(s); };
    BaudPM().Change = [this](PopupMenu& s) { BaudPM_Change(s); };
    ConnectPB().Action = [this](PushButton& s) { ConnectPB_Action(s); };
    PortPM().Change = [this](PopupMenu& s) { PortPM_Change(s); };
    PortPM().Open = [this](PopupMenu& s) { PortPM_Open(s); };
    ScanBtn().Action = [this](PushButton& s) { ScanBtn_Action(s); };
    ResetEF().TextChange = [this](TextField& s) { ResetEF_TextChange(s); };
    MySerial().DataAvailable = [this](Serial& s) { MySerial_DataAvailable(s); };
    SelectESPPB().Action = [this](PushButton& s) { SelectESPPB_Action(s); };
    ulb().CellBackgroundPaint = [this](Listbox& s, Graphics& g, std::int64_t row, std::int64_t column) { return ulb_CellBackgroundPaint(s, g, row, column); };
    ulb().DoubleClick = [this](Listbox& s) { ulb_DoubleClick(s); };
    ulb().Change = [this](Listbox& s) { ulb_Change(s); };
    ulb().Open = [this](Listbox& s) { ulb_Open(s); };
    ulb().CellTextChange = [this](Listbox& s, std::int64_t row, std::int64_t column) { ulb_CellTextChange(s, row, column); };
    DeletePB().Action = [this](PushButton& s) { DeletePB_Action(s); };
    AddressEF().TextChange = [this](TextField& s) { AddressEF_TextChange(s); };
    Open = [this] { Event_Open(); };
    Close = [this] { Event_Close(); };
    // Ends a running tool that would never end by itself.
    OnKeys("Cmd+.", [this] { esptool().Stop(); });
}
// clang-format on
