#include "flash/EspWin.h"
#include "platform/text/Text.h"

namespace {

// Beyond the end of most outputs, so the view follows the end. After 10,000 lines it stays there.
constexpr std::int64_t kFollowUntilLine = 10000;

void ShowOutput(Shell& shell, TextArea& pane) {
    pane.AppendText(DefineEncoding(shell.ReadAll(), Encodings::UTF8));
    pane.ScrollPosition(kFollowUntilLine);
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
