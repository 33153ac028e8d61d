#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

class SerialPort {
  public:
    SerialPort(std::string name, std::string_view prefix)
        : mName(std::move(name)), mDevicePath(std::string(prefix) + mName) {}

    const std::string& Name() const { return mName; }
    // The prefix, followed by the name.
    const std::string& DevicePath() const { return mDevicePath; }

  private:
    std::string mName, mDevicePath;
};

// The beginning of all device paths on this system.
std::string_view SerialPortPrefix();

// Lists the names of the machine's ports, those on USB first. Linux has them in `folder`; macOS
// ignores it.
std::vector<std::string> MachinePortNames(const std::string& folder = "/sys/class/tty");
