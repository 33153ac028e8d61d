// The choice of the flash tool.
#include "flash/EspWin.h"
#include "platform/files/OpenDialog.h"

void EspWin::tooltypePM_Open(PopupMenu& sender) { sender.ListIndex(mEspToolUse); }

// The window keeps the type of the tool and shows it. The command has one format for both types.
void EspWin::tooltypePM_Change(PopupMenu& sender) {
    mEspTool.clear();
    switch (sender.ListIndex()) {
        case 0:
            mEspToolUse = 0;
            EspToolEF().Text(mEspToolPy);
            if (!EspToolEF().Text().empty()) mEspTool = mEspToolPy;
            break;
        case 1:
            mEspToolUse = 1;
            if (mEspToolCk) {
                EspToolEF().Text(mEspToolCk->NativePath());
                if (!EspToolEF().Text().empty()) mEspTool = mEspToolCk->ShellPath();
            }
            break;
        default:
            break;
    }
    MakeCommand();
}

// After a cancel there is no tool: the former one isn't kept.
void EspWin::SelectESPPB_Action(PushButton&) {
    OpenDialog dialog;
    dialog.InitialDirectory(GetFolderItem("", 0));
    if (!dialog.InitialDirectory()) dialog.InitialDirectory(SpecialFolder::Documents());
    dialog.Title("Select ESPTool");
    dialog.PromptText("ESPToolを選択して下さい....");
    dialog.Filter("BinHex");  // not a registered type, so every file is offered
    mEspToolApp = dialog.ShowModal();
    EspToolEF().Text("");
    if (!mEspToolApp) return;
    EspToolEF().Text(mEspToolApp->NativePath());
    MakeCommand();
}

// The field only shows the tool. The command takes it from mEspToolApp, whatever the user types.
void EspWin::EspToolEF_TextChange(TextArea&) { MakeCommand(); }
