// The install setting file: lines of comma-separated fields, of which the first is a key.
//   cd,<reset method>      cb,<speed>      up,<file beside the setting file>,<address>
#include <functional>
#include <optional>

#include "flash/EspWin.h"
#include "platform/files/TextInputStream.h"
#include "platform/text/Text.h"

// The load skips lines that it can't use, without a message. A file that can't be opened changes
// nothing. A file that can be opened replaces the list.
void EspWin::SetInstallSetting(const FolderItemRef& file, Origin origin) {
    if (!file || !file->Exists()) return;
    const auto stream = TextInputStream::Open(file);
    if (!stream) return;

    Listbox& list = ulb();
    list.DeleteAllRows();
    list.AddRow({""});
    list.Cell(0, 1, "0x00100000");

    // Setting the reset method or the speed composes the command, which looks at every image. So
    // only the last of each is applied, after all images.
    std::optional<std::string> reset;
    std::optional<std::int64_t> speed;
    const PopupMenu& speeds = BaudPM();
    const FolderItemRef folder = file->Parent();
    const auto child = origin == Origin::Chosen ? &FolderItem::Child : &FolderItem::TrustedChild;
    do {
        const std::string line = stream->ReadLine(nullptr);
        if (line.empty()) continue;
        const std::string key = NthField(line, ",", 1);
        const std::string value = NthField(line, ",", 2);
        if (Equal(key, "cd")) {
            reset = value;
        } else if (Equal(key, "cb")) {
            for (std::int64_t i = 0; i < speeds.ListCount(); ++i)
                if (Equal(value, speeds.List(i))) speed = i;
        } else if (Equal(key, "up")) {
            const FolderItemRef image = std::invoke(child, *folder, value);
            if (image && image->Exists()) SetUploadFileToList(image, NthField(line, ",", 3));
        }
    } while (!stream->Eof());
    stream->Close();
    if (reset) ResetEF().Text(*reset);
    if (speed) BaudPM().ListIndex(*speed);
    MakeCommand();
}
