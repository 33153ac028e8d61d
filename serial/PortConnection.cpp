// The connection: a toggle on mConnected. ConnectPB's caption follows it.
#include <algorithm>

#include "flash/EspWin.h"
#include "frame/Module1.h"
#include "platform/application/System.h"
#include "platform/text/Text.h"

void EspWin::BaudPM_Open(PopupMenu& sender) {
    for (std::int64_t i = 0; i < sender.ListCount(); ++i) {
        if (!Equal(sender.List(i), mLastBaudRate)) continue;
        sender.ListIndex(i);
        return;
    }
}

// The command never shows another speed than the popup.
void EspWin::BaudPM_Change(PopupMenu&) { MakeCommand(); }

void EspWin::ConnectPB_Action(PushButton&) { DoConnect(""); }

// Opens `port`, or the port that PortPM shows if `port` is empty. If a port is open, closes that
// one instead, whatever `port` is.
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

// The ports are looked up afresh: PortPM's rows are as old as the last scan.
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

// Called between a port's settings and its opening. Does nothing yet.
void EspWin::RbPortOpenPre() {}

// DoConnect clears mConnected.
void EspWin::RbPortClose() {
    if (!mConnected) return;
    MySerial().Close();
    ConnectPB().Caption(Module1::kConnect(""));
}

// A name that is already further down stays there too: it is then remembered twice.
void EspWin::MemoPortInfo(const std::string& port) {
    if (!Equal(port, mPortName[0])) {
        std::shift_right(mPortName.begin(), mPortName.end(), 1);
        mPortName[0] = port;
    }
    mLastBaudRate = BaudPM().Text();
}
