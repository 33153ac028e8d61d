// The choice of an image or an install setting file.
#include "flash/EspWin.h"
#include "frame/FileTypes.h"
#include "platform/files/OpenDialog.h"
#include "platform/text/Text.h"

void EspWin::SelectPB_Action(PushButton&) { SelectUploadFile(); }

void EspWin::SelectUploadFile() {
    OpenDialog dialog;
    dialog.InitialDirectory(GetFolderItem("", 0));
    if (!dialog.InitialDirectory()) dialog.InitialDirectory(SpecialFolder::Documents());
    dialog.Title("Select Uploadファイル");
    dialog.PromptText("Uploadファイルを選択して下さい....");
    dialog.Filter(FileTypes1::BinFile() + FileTypes1::InstSet());
    const FolderItemRef file = dialog.ShowModal();
    if (!file) return;
    const std::string type = file->Type();
    if (Equal(type, FileTypes1::BinFile().Name()))
        SetUploadFileToList(file, "");
    else if (Equal(type, FileTypes1::InstSet().Name()))
        SetInstallSetting(file, Origin::Chosen);
    MakeCommand();
}
