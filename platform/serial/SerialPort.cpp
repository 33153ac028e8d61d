#include "platform/serial/SerialPort.h"

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

}  // namespace

std::string_view SerialPortPrefix() { return kDevicePrefix; }

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
