#include <string_view>
#include <vector>

#include "flash/EspWin.h"
#include "platform/system/System.h"

void EspWin::MakeCommand() {
    std::vector<std::string> files;
    std::vector<std::string> addresses;
    const std::string toolPath = mEspToolApp ? mEspToolApp->ShellPath() : std::string();
    const std::string portName = PortPM().Text();

    const Listbox& list = ulb();
    for (std::int64_t row = 0; row < list.ListCount(); ++row) {
        if (list.Cell(row, 0).empty()) continue;
        std::string address = list.Cell(row, 1);
        if (address.empty()) continue;
        const Variant tag = list.CellTag(row, 0);
        const auto* file = std::any_cast<FolderItemRef>(&tag);
        if (!file || !*file || !(*file)->Exists()) continue;
        files.push_back((*file)->ShellPath());
        addresses.push_back(std::move(address));
    }

    // The blanks are part of the format: one after each option, none after the last image.
    std::string command = toolPath + " -vv ";
    const auto option = [&command](std::string_view letters, std::string_view value) {
        command.append(letters).append(" ").append(value).append(" ");
    };
    if (const std::string reset = ResetEF().Text(); !reset.empty()) option("-cd", reset);
    if (const std::string speed = BaudPM().Text(); !speed.empty()) option("-cb", speed);
    if (!portName.empty()) option("-cp", System().DevicePrefix + portName);
    for (std::size_t i = 0; i < files.size(); ++i) {
        option("-ca", addresses[i]);
        command.append("-cf ").append(files[i]);
        if (i + 1 < files.size()) command += ' ';
    }
    InstallEF().Text(command);
}

void EspWin::ResetEF_TextChange(TextField&) { MakeCommand(); }
