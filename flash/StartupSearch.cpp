// What the window does when it opens and when it closes.
#include "flash/EspWin.h"
#include "platform/application/Application.h"

namespace {

// The user hasn't chosen what the search finds, and Start runs it. So the search passes over what a
// stranger may have planted, say in /tmp.
FolderItemRef TrustedChild(const FolderItemRef& folder, std::string_view name) {
    return folder ? folder->TrustedChild(name) : nullptr;
}

// In the base folder, or one or two levels above it.
FolderItemRef FindBinFolder() {
    FolderItemRef folder = GetFolderItem("", 0);
    for (int level = 0; folder && level < 3; ++level) {
        if (FolderItemRef bin = TrustedChild(folder, "bin")) return bin;
        folder = folder->Parent();
    }
    return nullptr;
}

}  // namespace

void EspWin::Event_Open() {
    FolderItemRef tool = TrustedChild(TrustedChild(GetFolderItem("", 0), "esptool"), "esptool");
    // In a clone of the official tool's repository this is a folder.
    if (tool && !tool->IsFile()) tool = nullptr;
    EspToolEF().Text("");
    mEspToolApp = tool;
    if (tool) EspToolEF().Text(tool->NativePath());

    // The search ends at the nearest folder named bin, even if the file isn't in it.
    if (const FolderItemRef bin = FindBinFolder())
        SetInstallSetting(TrustedChild(bin, "installsetting.csv"));
}

// The end of the program also ends a running tool and closes an open port.
void EspWin::Event_Close() { Quit(0); }
