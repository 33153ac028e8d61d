#include "flash/EspWin.h"
#include "platform/text/Text.h"

namespace {

// For ScrollPosition: a line that most outputs don't reach, so the end comes into view.
constexpr std::int64_t kOutputEnd = 10000;

void ShowOutput(Shell& shell, TextArea& pane) {
    pane.AppendText(DefineEncoding(shell.ReadAll(), Encodings::UTF8));
    pane.ScrollPosition(kOutputEnd);
}

}  // namespace

// The tool needs the device, so an open connection is closed before the tool starts.
void EspWin::StartPB_Action(PushButton& sender) {
    sender.Enabled(false);
    rEF().Text("Wait....");
    ShowBusy(true);
    termConnected = mConnected;
    if (termConnected) DoConnect("");
    esptool().Execute(InstallEF().Text());
}

void EspWin::esptool_DataAvailable(Shell& sender) { ShowOutput(sender, rEF()); }

void EspWin::esptool_Completed(Shell& sender) {
    ShowOutput(sender, rEF());
    ShowBusy(false);
    if (termConnected) DoConnect("");
    StartPB().Enabled(true);
    PortPM().Enabled(true);
    SelectPB().Enabled(true);
    AskForAttention();
}

void EspWin::ShowBusy(bool busy) {
    rEF().Busy(busy);
    const std::string hint = busy ? KeysAsShown(kStopKeys) + " stops the run" : std::string();
    rEF().HelpTag(hint);
    StartPB().HelpTag(hint);
}
