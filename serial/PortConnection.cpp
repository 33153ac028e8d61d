// The connection. mConnected says whether it is open, and the caption of ConnectPB follows.
#include <algorithm>

#include "flash/EspWin.h"
#include "frame/Captions.h"
#include "platform/system/System.h"
#include "platform/text/Text.h"

void EspWin::BaudPM_Open(PopupMenu& sender) {
    for (std::int64_t i = 0; i < sender.ListCount(); ++i) {
        if (!Equal(sender.List(i), mLastBaudRate)) continue;
        sender.ListIndex(i);
        return;
    }
}

// The command always shows the speed of the popup.
void EspWin::BaudPM_Change(PopupMenu&) { MakeCommand(); }

void EspWin::ConnectPB_Action(PushButton&) { DoConnect(""); }

// Closes the open port if there is one, whatever `port` is. Otherwise opens `port`, or the port
// that PortPM shows if `port` is empty.
void EspWin::DoConnect(std::string port) {
    if (mConnected) {
        RbPortClose();
        mConnected = false;
        ConnectPB().Caption(Module1::kConnect(""));
        return;
    }
    if (port.empty()) port = PortPM().Text();
    mConnected = RbPortOpen(port);
    if (!mConnected) {
        AskForAttention();
        return;
    }
    ConnectPB().Caption(Module1::kDisconnect(""));
    MemoPortInfo(port);
}

// Looks the ports up again, since the rows of PortPM are as old as the last scan.
bool EspWin::RbPortOpen(const std::string& port) {
    if (mConnected) return true;
    const std::int64_t count = System().SerialPortCount();
    for (std::int64_t i = 0; i < count; ++i) {
        const SerialPort candidate = System().SerialPort(i);
        if (!Equal(port, candidate.Name())) continue;
        Serial& serial = MySerial();
        serial.SerialPort(candidate);
        serial.Baud(static_cast<std::int64_t>(Val(BaudPM().Text())));
        serial.XON(XonCB().Value());
        serial.CTS(CtsCB().Value());
        serial.DTR(DtrCB().Value());
        RbPortOpenPre();
        serial.RequestToSend(mSerialRTS);
        serial.DataTerminalReady(mSerialDTR);
        mConnected = serial.Open();
        if (!mConnected) Beep();
        return mConnected;
    }
    Beep();
    return false;
}

// A hook between the settings of a port and its opening. Nothing needs it yet.
void EspWin::RbPortOpenPre() {}

// DoConnect clears mConnected.
void EspWin::RbPortClose() {
    if (!mConnected) return;
    MySerial().Close();
    ConnectPB().Caption(Module1::kConnect(""));
}

// A name that stands further down already stays there, so it is remembered twice.
void EspWin::MemoPortInfo(const std::string& port) {
    if (!Equal(port, mPortName[0])) {
        std::shift_right(mPortName.begin(), mPortName.end(), 1);
        mPortName[0] = port;
    }
    mLastBaudRate = BaudPM().Text();
}
