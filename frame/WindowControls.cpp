// The window's content, in the order of creation.
#include <initializer_list>
#include <string_view>
#include <vector>

#include "flash/EspWin.h"
#include "frame/Module1.h"

namespace {

void Fill(PopupMenu& popup, std::initializer_list<std::string_view> rows, std::int64_t selected) {
    for (const std::string_view row : rows) popup.AddRow(row);
    popup.ListIndex(selected);
}

}  // namespace

// Handlers come last: setting the start values runs none.
void EspWin::CreateControls() {
    CreateInOrder();
    SetStartValues();
    PlaceControls();
    NameForScreenReaders();
    AttachHandlers();
}

void EspWin::CreateInOrder() {
    Add<PopupMenu>("tooltypePM");
    Add<Label>("Label1");
    Add<PushButton>("StartPB");
    Add<TextArea>("rEF");
    Add<TextArea>("UploadEF");
    Add<Label>("Label2");
    Add<Label>("Label3");
    Add<PushButton>("SelectPB");
    Add<Shell>("esptool");
    Add<TextArea>("EspToolEF");
    Add<Label>("Label5");
    Add<PopupMenu>("BaudPM");
    Add<PopupMenu>("BitsPM");
    Add<PushButton>("ConnectPB");
    Add<CheckBox>("CtsCB");
    Add<CheckBox>("DtrCB");
    Add<PopupMenu>("ParityPM");
    Add<PopupMenu>("PortPM");
    Add<PushButton>("ScanBtn");
    Add<PopupMenu>("StopPM");
    Add<CheckBox>("XonCB");
    Add<Label>("Label7");
    Add<TextField>("ResetEF");
    Add<Serial>("MySerial");
    Add<Label>("Label9");
    Add<TextArea>("InstallEF");
    Add<PushButton>("SelectESPPB");
    Add<Label>("Label8");
    Add<Listbox>("ulb", std::vector<std::string>{"File (-cf)", "Address(-ca)"}, 100);
    Add<PushButton>("DeletePB");
    Add<TextField>("AddressEF");
}

void EspWin::SetStartValues() {
    Label1().Text("ESP Tool: ");
    Label2().Text("Port (-cp): ");
    Label3().Text("Upload: ");
    Label5().Text("Install: ");
    Label7().Text("Reset (-cd): ");
    Label8().Text("Address (-ca): ");
    Label9().Text("Speed (-cb): ");

    StartPB().Caption("Start");
    SelectPB().Caption(Module1::kSelect(""));
    ConnectPB().Caption(Module1::kConnect(""));
    ScanBtn().Caption(Module1::kScan(""));
    SelectESPPB().Caption(Module1::kSelect(""));
    DeletePB().Caption(Module1::kDelete(""));
    DeletePB().Enabled(false);
    CtsCB().Caption("CTS");
    DtrCB().Caption("DTR");
    XonCB().Caption("XON");

    rEF().Text("Install ....");
    rEF().ReadOnly(true);
    UploadEF().ReadOnly(true);
    EspToolEF().Text("esptool");
    ResetEF().Text("ck");
    AddressEF().Text("0x00000000");

    Fill(tooltypePM(), {"esptool.py", "esptool-ck"}, 0);
    Fill(BaudPM(),
         {"2400", "4800", "7200", "9600", "14400", "19200", "28800", "38400", "57600", "76800",
          "115200", "230400", "460800", "921600"},
         10);
    Fill(BitsPM(), {"5", "6", "7", "8"}, 3);
    Fill(ParityPM(), {"No", "Odd", "Even"}, 0);
    Fill(PortPM(), {}, 0);
    Fill(StopPM(), {"1", "1.5", "2"}, 0);
    ulb().AddRow({"", "0x00000000"});
}

// In the words of the labels. The two Select buttons show the same caption.
void EspWin::NameForScreenReaders() {
    tooltypePM().AccessibleName("Tool type");
    rEF().AccessibleName("Output of the flash tool");
    UploadEF().AccessibleName("Upload file");
    SelectPB().AccessibleName("Select upload file");
    EspToolEF().AccessibleName("ESP tool");
    BaudPM().AccessibleName("Speed (-cb)");
    BitsPM().AccessibleName("Data bits");
    CtsCB().AccessibleName("CTS flow control");
    DtrCB().AccessibleName("DTR flow control");
    ParityPM().AccessibleName("Parity");
    PortPM().AccessibleName("Port (-cp)");
    ScanBtn().AccessibleName("Scan for ports");
    StopPM().AccessibleName("Stop bits");
    XonCB().AccessibleName("XON flow control");
    ResetEF().AccessibleName("Reset (-cd)");
    InstallEF().AccessibleName("Install command");
    SelectESPPB().AccessibleName("Select ESP tool");
    ulb().AccessibleName("Upload files and addresses");
    DeletePB().AccessibleName("Delete upload file");
    AddressEF().AccessibleName("Address (-ca)");
}
