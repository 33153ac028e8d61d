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

    // Returns `defaultText`, since there is no store of translated texts.
    std::string GetLocalizedString(std::string_view key, std::string_view defaultText,
                                   std::string_view language) const;

    // Tests replace these two: the function that lists the names of the ports, and the beginning of
    // the paths of their devices.
    std::function<std::vector<std::string>()> PortNames;
    std::string DevicePrefix;

    // How often Beep was called. Tests read it, since they can't hear.
    int Beeps = 0;

  private:
    friend SystemClass& System();
    SystemClass();

    std::vector<std::string> mPorts;
};

SystemClass& System();

// The system's alert sound.
void Beep();
