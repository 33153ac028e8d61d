#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/serial/SerialPort.h"

class SystemClass {
  public:
    // Looks at the machine's ports and keeps what it found for SerialPort.
    std::int64_t SerialPortCount();

    // The port at that position at the last SerialPortCount; an unnamed one outside its range.
    ::SerialPort SerialPort(std::int64_t index) const;

    // `defaultText`, since there is no store of translated texts.
    std::string GetLocalizedString(std::string_view key, std::string_view defaultText,
                                   std::string_view language) const;

    // Where the port names come from, and what their devices' paths begin with. A test puts
    // values of its own here.
    std::function<std::vector<std::string>()> PortNames;
    std::string DevicePrefix;

  private:
    friend SystemClass& System();
    SystemClass();

    std::vector<std::string> mPorts;
};

SystemClass& System();

// The system's alert sound.
void Beep();
