// The list of serial ports.
#include <vector>

#include "flash/EspWin.h"
#include "frame/Captions.h"
#include "platform/system/System.h"
#include "platform/text/Text.h"

void EspWin::PortPM_Open(PopupMenu&) { MakeSerialPortPopupMenu(); }

void EspWin::ScanBtn_Action(PushButton&) { MakeSerialPortPopupMenu(); }

// An open port stays as it is. The new choice takes effect at the next connect.
void EspWin::PortPM_Change(PopupMenu&) {
    ConnectPB().Caption(mConnected ? Module1::kDisconnect("") : Module1::kConnect(""));
    MakeCommand();
}

// Selects the port that was connected last. A remembered port on the first row doesn't end the
// search: that row is selected already, and an older port further down may be the better choice.
void EspWin::MakeSerialPortPopupMenu() {
    PopupMenu& ports = PortPM();
    ports.DeleteAllRows();
    std::vector<std::string> names;
    const std::int64_t count = System().SerialPortCount();
    for (std::int64_t i = 0; i < count; ++i) {
        names.push_back(System().SerialPort(i).Name());
        ports.AddRow(names.back());
    }
    if (ports.ListCount() == 0) return;
    ports.ListIndex(0);
    for (const std::string& remembered : mPortName) {
        const std::int64_t row = IndexOf(names, remembered, 0);
        if (row > 0 && row < ports.ListCount()) {
            ports.ListIndex(row);
            return;
        }
    }
}
