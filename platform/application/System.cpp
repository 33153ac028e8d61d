#include "platform/application/System.h"

#include <QApplication>
#include <QSerialPortInfo>
#include <algorithm>

#include "platform/qt/QtText.h"

namespace {

#ifdef Q_OS_MACOS
constexpr auto kDevicePrefix = "/dev/cu.";
// Each device is there twice; the call-out one ("cu.") doesn't wait for a carrier.
bool Listed(const QSerialPortInfo& port) { return port.portName().startsWith("cu."); }
std::string ListedName(const QSerialPortInfo& port) { return FromQt(port.portName().mid(3)); }
#else
constexpr auto kDevicePrefix = "/dev/";
bool Listed(const QSerialPortInfo&) { return true; }
std::string ListedName(const QSerialPortInfo& port) { return FromQt(port.portName()); }
#endif

std::vector<std::string> MachinePortNames() {
    auto ports = QSerialPortInfo::availablePorts();
    // The board hangs on USB; the ports on the mainboard mostly lead nowhere.
    std::stable_partition(ports.begin(), ports.end(),
                          [](const QSerialPortInfo& port) { return port.hasVendorIdentifier(); });
    std::vector<std::string> names;
    for (const QSerialPortInfo& port : ports)
        if (Listed(port)) names.push_back(ListedName(port));
    return names;
}

}  // namespace

SystemClass::SystemClass() : PortNames(MachinePortNames), DevicePrefix(kDevicePrefix) {}

std::int64_t SystemClass::SerialPortCount() {
    mPorts = PortNames();
    return static_cast<std::int64_t>(mPorts.size());
}

SerialPort SystemClass::SerialPort(std::int64_t index) const {
    const auto at = static_cast<std::size_t>(index);
    return ::SerialPort(at < mPorts.size() ? mPorts[at] : std::string());
}

std::string SystemClass::GetLocalizedString(std::string_view, std::string_view defaultText,
                                            std::string_view) const {
    return std::string(defaultText);
}

SystemClass& System() {
    static SystemClass system;
    return system;
}

void Beep() { QApplication::beep(); }
