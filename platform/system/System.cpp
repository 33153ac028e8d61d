#include "platform/system/System.h"

#include <QApplication>

SystemClass::SystemClass()
    : PortNames([] { return MachinePortNames(); }), DevicePrefix(SerialPortPrefix()) {}

std::int64_t SystemClass::SerialPortCount() {
    mPorts = PortNames();
    return static_cast<std::int64_t>(mPorts.size());
}

SerialPort SystemClass::SerialPort(std::int64_t index) const {
    const auto at = static_cast<std::size_t>(index);
    return {at < mPorts.size() ? mPorts[at] : std::string(), DevicePrefix};
}

std::string SystemClass::GetLocalizedString(std::string_view, std::string_view defaultText,
                                            std::string_view) const {
    return std::string(defaultText);
}

SystemClass& System() {
    static SystemClass system;
    return system;
}

void Beep() {
    ++System().Beeps;
    QApplication::beep();
}
