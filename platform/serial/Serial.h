#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "platform/controls/Control.h"
#include "platform/serial/SerialPort.h"
#include "platform/text/Text.h"

// One serial port, with eight data bits, no parity and one stop bit. Settings take effect at the
// next Open.
class Serial : public Control {
  public:
    Serial(Window& owner, std::string name);
    // Closes the port.
    ~Serial() override;

    void SerialPort(const ::SerialPort& port);
    // Bits a second.
    void Baud(std::int64_t rate) { mSettings.baud = rate; }
    // Flow control: by XON and XOFF characters, by the RTS and CTS lines, or both. DTR changes
    // nothing, since the systems that we run on have no flow control by that line.
    void XON(bool on) { mSettings.xon = on; }
    void CTS(bool on) { mSettings.cts = on; }
    void DTR(bool) {}
    // The state of the two lines. Open sets both in one step, since most boards reset when one is
    // lowered after the other. With CTS on, Open leaves RTS to the driver. A port without such
    // lines opens all the same.
    void RequestToSend(bool high) { mSettings.rts = high; }
    void DataTerminalReady(bool high) { mSettings.dtr = high; }

    // Opens the port and locks others out. Returns false, with nothing left open, if the port is
    // gone or busy, refuses the rate, or may not be opened by the user.
    bool Open();
    void Close();

    // Takes all bytes out of the receive buffer.
    std::string ReadAll(TextEncoding encoding);
    // Does nothing, since this class sends nothing that could wait in a buffer.
    void Flush() {}

    // Bytes have been received. After this event the class reads nothing before the next ReadAll,
    // so a device that fills the system's buffers has to wait. If the device goes away, the port is
    // closed without an event.
    std::function<void(Serial&)> DataAvailable;

  private:
    struct Settings {
        std::string devicePath;
        std::int64_t baud = 0;
        bool xon = false, cts = false, rts = false, dtr = false;
    };
    class Port;

    Settings mSettings;
    std::unique_ptr<Port> mPort;  // from Open to Close, also when its device has gone away
};
