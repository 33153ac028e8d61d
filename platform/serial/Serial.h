#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "platform/controls/Control.h"
#include "platform/serial/SerialPort.h"
#include "platform/text/Text.h"

// One serial port, eight data bits, no parity, one stop bit. What is set holds from the next Open.
class Serial : public Control {
  public:
    Serial(Window& owner, std::string name);
    // Closes the port.
    ~Serial() override;

    void SerialPort(const ::SerialPort& port);
    // Bits a second.
    void Baud(std::int64_t rate) { mSettings.baud = rate; }
    // Flow control: by XON and XOFF characters, by the RTS and CTS lines, or both. There is none
    // by the DTR line on the systems that we run on, so DTR changes nothing.
    void XON(bool on) { mSettings.xon = on; }
    void CTS(bool on) { mSettings.cts = on; }
    void DTR(bool) {}
    // The state that Open gives to the two lines, in one step: lowering one after the other
    // resets the usual board. With CTS on, RTS is left to the driver. Ports without such lines open
    // all the same.
    void RequestToSend(bool high) { mSettings.rts = high; }
    void DataTerminalReady(bool high) { mSettings.dtr = high; }

    // Opens the port for us alone. False, with nothing left open, when it is gone, busy, not
    // permitted, or refuses the rate.
    bool Open();
    void Close();

    // All that has been received so far; empties the buffer.
    std::string ReadAll(TextEncoding encoding);
    // Sends what waits to be sent. This class writes nothing, so nothing ever waits.
    void Flush() {}

    // Received bytes are waiting. It isn't raised again before a ReadAll, so a device that sends
    // more than the system's buffers hold has to wait until then. A device that goes away while
    // open raises nothing; the port is then closed.
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
