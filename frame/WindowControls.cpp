// The window's content: one paragraph for each control, in the order of creation. A place is left,
// top, width, height, locks, tab index and text size. The tab indexes have gaps: 9 and 22 belong to
// the two members without a visual form, and nothing has 7 and 25. Eleven controls stand above or
// left of the window on purpose. All of these but Label8 are in the tab order; data bits, parity
// and stop bits have no effect yet.
#include <initializer_list>
#include <string_view>

#include "flash/EspWin.h"
#include "flash/Speeds.h"
#include "frame/Captions.h"

namespace {

constexpr Locks kNone{};
constexpr Locks kRight{.Right = true};
constexpr Locks kLeftTop{.Left = true, .Top = true};
constexpr Locks kTopRight{.Top = true, .Right = true};
constexpr Locks kLeftRight{.Left = true, .Right = true};
constexpr Locks kLeftTopRight{.Left = true, .Top = true, .Right = true};
constexpr Locks kAllSides{.Left = true, .Top = true, .Right = true, .Bottom = true};

template <class Rows = std::initializer_list<std::string_view>>
void Fill(PopupMenu& popup, const Rows& rows, std::int64_t selected) {
    for (const std::string_view row : rows) popup.AddRow(row);
    popup.ListIndex(selected);
}

}  // namespace

// The handlers of a control come last in its paragraph, so that setting its start values runs none.
void EspWin::CreateControls() {
    auto& toolType = Add<PopupMenu>("tooltypePM", {30, -143, 107, 20, kLeftTop, 0, 11});
    toolType.AccessibleName("Tool type");
    toolType.AccessibleDescription("Type of the flash tool");
    Fill(toolType, {"esptool.py", "esptool-ck"}, 0);
    toolType.Change = On(&EspWin::tooltypePM_Change);
    toolType.Open = On(&EspWin::tooltypePM_Open);

    auto& toolLabel = Add<Label>("Label1", {0, 7, 75, 20, kLeftTop, 1, 11});
    toolLabel.Text("ESP Tool: ");

    auto& start = Add<PushButton>("StartPB", {422, 290, 80, 20, kLeftTop, 2, 11});
    start.Caption("Start");
    start.Action = On(&EspWin::StartPB_Action);

    auto& output = Add<TextArea>("rEF", {0, 322, 512, 198, kAllSides, 3, 11});
    output.AccessibleName("Output of the flash tool");
    output.Text("Install ....");
    output.ReadOnly(true);
    output.SetFocus();  // where typing changes nothing

    auto& uploadFile = Add<TextArea>("UploadEF", {20, -77, 334, 45, kLeftTopRight, 4, 11});
    uploadFile.AccessibleName("Upload file");
    uploadFile.ReadOnly(true);
    uploadFile.TextChange = On(&EspWin::UploadEF_TextChange);

    auto& portLabel = Add<Label>("Label2", {0, 56, 75, 20, kLeftTop, 5, 11});
    portLabel.Text("Port (-cp): ");

    auto& uploadLabel = Add<Label>("Label3", {0, 134, 75, 20, kLeftTop, 6, 11});
    uploadLabel.Text("Upload: ");

    auto& selectUpload = Add<PushButton>("SelectPB", {422, 179, 80, 20, kTopRight, 8, 11});
    selectUpload.AccessibleName("Select upload file");
    selectUpload.Caption(Module1::kSelect(""));
    selectUpload.Action = On(&EspWin::SelectPB_Action);

    auto& shell = Add<Shell>("esptool");
    shell.Completed = On(&EspWin::esptool_Completed);
    shell.DataAvailable = On(&EspWin::esptool_DataAvailable);

    auto& tool = Add<TextArea>("EspToolEF", {80, 7, 334, 45, kLeftTopRight, 10, 11});
    tool.AccessibleName("ESP Tool");
    toolLabel.Names(tool);
    tool.Text("esptool");
    tool.TextChange = On(&EspWin::EspToolEF_TextChange);

    auto& commandLabel = Add<Label>("Label5", {0, 208, 75, 20, kLeftTop, 11, 11});
    commandLabel.Text("Install: ");

    auto& speed = Add<PopupMenu>("BaudPM", {80, 82, 80, 20, kTopRight, 12, 10});
    speed.AccessibleName("Speed (-cb)");
    Fill(speed, kSpeeds, 10);
    speed.Open = On(&EspWin::BaudPM_Open);
    speed.Change = On(&EspWin::BaudPM_Change);

    auto& dataBits = Add<PopupMenu>("BitsPM", {262, -109, 50, 20, kNone, 13, 10});
    dataBits.AccessibleName("Data bits");
    dataBits.AccessibleDescription("Data bits of the connection");
    Fill(dataBits, {"5", "6", "7", "8"}, 3);

    auto& connect = Add<PushButton>("ConnectPB", {350, -143, 80, 20, kRight, 14, 11});
    connect.Caption(Module1::kConnect(""));
    connect.Action = On(&EspWin::ConnectPB_Action);

    auto& cts = Add<CheckBox>("CtsCB", {443, -123, 50, 20, kRight, 15, 10});
    cts.AccessibleName("CTS flow control");
    cts.Caption("CTS");

    auto& dtr = Add<CheckBox>("DtrCB", {443, -103, 50, 20, kRight, 16, 10});
    dtr.AccessibleName("DTR flow control");
    dtr.Caption("DTR");

    auto& parity = Add<PopupMenu>("ParityPM", {317, -109, 50, 20, kNone, 17, 10});
    parity.AccessibleName("Parity");
    parity.AccessibleDescription("Parity of the connection");
    Fill(parity, {"No", "Odd", "Even"}, 0);

    auto& port = Add<PopupMenu>("PortPM", {80, 56, 331, 20, kLeftRight, 18, 11});
    port.AccessibleName("Port (-cp)");
    portLabel.Names(port);
    Fill(port, {}, 0);
    port.Change = On(&EspWin::PortPM_Change);
    port.Open = On(&EspWin::PortPM_Open);

    auto& scan = Add<PushButton>("ScanBtn", {422, 57, 80, 20, kLeftTop, 19, 11});
    scan.AccessibleDescription("Scan for serial ports");
    scan.Caption(Module1::kScan(""));
    scan.Action = On(&EspWin::ScanBtn_Action);

    auto& stopBits = Add<PopupMenu>("StopPM", {372, -109, 50, 20, kNone, 20, 10});
    stopBits.AccessibleName("Stop bits");
    stopBits.AccessibleDescription("Stop bits of the connection");
    Fill(stopBits, {"1", "1.5", "2"}, 0);

    auto& xon = Add<CheckBox>("XonCB", {443, -143, 50, 20, kRight, 21, 10});
    xon.AccessibleName("XON flow control");
    xon.Caption("XON");

    auto& resetLabel = Add<Label>("Label7", {0, 109, 75, 20, kLeftTop, 23, 11});
    resetLabel.Text("Reset (-cd): ");

    auto& reset = Add<TextField>("ResetEF", {80, 108, 80, 22, kLeftTop, 24, 11});
    reset.AccessibleName("Reset (-cd)");
    resetLabel.Names(reset);
    reset.Text("ck");
    reset.TextChange = On(&EspWin::ResetEF_TextChange);

    auto& serial = Add<Serial>("MySerial");
    serial.DataAvailable = On(&EspWin::MySerial_DataAvailable);

    auto& speedLabel = Add<Label>("Label9", {0, 81, 75, 20, kLeftTop, 27, 11});
    speedLabel.Text("Speed (-cb): ");
    speedLabel.Names(speed);

    auto& command = Add<TextArea>("InstallEF", {80, 208, 334, 108, kLeftTopRight, 28, 11});
    command.AccessibleName("Install command");
    commandLabel.Names(command);

    auto& selectTool = Add<PushButton>("SelectESPPB", {422, 7, 80, 20, kTopRight, 29, 11});
    selectTool.AccessibleName("Select ESP tool");
    selectTool.Caption(Module1::kSelect(""));
    selectTool.Action = On(&EspWin::SelectESPPB_Action);

    auto& addressLabel = Add<Label>("Label8", {-87, -56, 75, 20, kLeftTop, 30, 11});
    addressLabel.Text("Address (-ca): ");

    auto& images = Add<Listbox>("ulb", {80, 134, 334, 70, kLeftTop, 31, 11},
                                std::vector<std::string>{"File (-cf)", "Address(-ca)"}, 100);
    images.AccessibleName("Upload files and addresses");
    images.CellHint("address");
    uploadLabel.Names(images);
    images.AddRow({"", "0x00000000"});
    images.CellBackgroundPaint = On(&EspWin::ulb_CellBackgroundPaint);
    images.DoubleClick = On(&EspWin::ulb_DoubleClick);
    images.Change = On(&EspWin::ulb_Change);
    images.Open = On(&EspWin::ulb_Open);
    images.DeleteKey = On(&EspWin::ulb_DeleteKey);
    images.CellTextChange = On(&EspWin::ulb_CellTextChange);

    auto& remove = Add<PushButton>("DeletePB", {422, 134, 80, 20, kTopRight, 32, 11});
    remove.AccessibleName("Delete upload file");
    remove.Caption(Module1::kDelete(""));
    remove.Enabled(false);
    remove.Action = On(&EspWin::DeletePB_Action);

    auto& address = Add<TextField>("AddressEF", {379, -54, 88, 22, kLeftTop, 26, 11});
    address.AccessibleName("Address (-ca)");
    addressLabel.Names(address);
    address.Text("0x00000000");
    address.TextChange = On(&EspWin::AddressEF_TextChange);

    Open = On(&EspWin::Event_Open);
    Close = On(&EspWin::Event_Close);
    // A tool may hang, and no button stops it.
    OnKeys(kStopKeys, [this] { esptool().Stop(); });
    for (const auto* keys : {"Cmd+Return", "Cmd+Enter"})  // Enter is the number pad's
        OnKeys(keys, [this] { StartPB().Press(); });
}
