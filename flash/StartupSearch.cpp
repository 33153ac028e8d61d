// What the window does when it opens and when it closes.
#include "flash/EspWin.h"
#include "platform/application/Application.h"

namespace {

FolderItemRef ExistingChild(const FolderItemRef& folder, std::string_view name) {
    const FolderItemRef child = folder ? folder->Child(name) : nullptr;
    return child && child->Exists() ? child : nullptr;
}

// In the base folder, or one or two levels above it.
FolderItemRef FindBinFolder() {
    FolderItemRef folder = GetFolderItem("", 0);
    for (int level = 0; folder && level < 3; ++level) {
        if (FolderItemRef bin = ExistingChild(folder, "bin")) return bin;
        folder = folder->Parent();
    }
    return nullptr;
}

}  // namespace

void EspWin::Event_Open() {
    const FolderItemRef tool =
        ExistingChild(ExistingChild(GetFolderItem("", 0), "esptool"), "esptool");
    EspToolEF().Text("");
    mEspToolApp = tool;
    if (tool) EspToolEF().Text(tool->NativePath());

    // The nearest folder named bin ends the search, even if the file isn't in it.
    if (const FolderItemRef bin = FindBinFolder())
        SetInstallSetting(bin->Child("installsetting.csv"));
}

// A running tool and an open port end with the program.
void EspWin::Event_Close() { Quit(0); }
