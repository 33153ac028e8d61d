#include "platform/serial/SerialPort.h"

#ifdef __APPLE__

#include <QSerialPortInfo>

#include "platform/qt/QtText.h"

std::string_view SerialPortPrefix() { return "/dev/cu."; }

// Each device has two names. The call-out one ("cu.") doesn't wait for a carrier.
std::vector<std::string> MachinePortNames(const std::string&) {
    std::vector<std::string> names;
    for (const QSerialPortInfo& port : QSerialPortInfo::availablePorts())
        if (port.portName().startsWith("cu.")) names.push_back(FromQt(port.portName().mid(3)));
    return names;
}

#else

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <system_error>
#include <tuple>

namespace fs = std::filesystem;

namespace {

// The kernel makes these ports without a device: Bluetooth, null modems, USB gadgets.
bool NeedsNoDevice(std::string_view name) {
    return name.starts_with("rfcomm") || name.starts_with("tnt") || name.starts_with("ttyGS");
}

// The mainboard's driver lists more ports than the machine has. The others have type 0, "unknown".
bool HasHardware(const fs::path& port) {
    int type = 1;
    std::ifstream(port / "type") >> type;
    return type != 0;
}

// True if a device above it has a USB vendor.
bool IsOnUsb(const fs::path& port) {
    std::error_code error;
    for (fs::path device = fs::canonical(port / "device", error); device.has_relative_path();
         device = device.parent_path())
        if (fs::exists(device / "idVendor", error)) return true;
    return false;
}

}  // namespace

std::string_view SerialPortPrefix() { return "/dev/"; }

// Reads the kernel's list. Qt's own list asks libudev, which looks at every virtual console and
// takes a third of the program's start.
std::vector<std::string> MachinePortNames(const std::string& folder) {
    struct Port {
        bool onUsb;
        std::string name;
    };
    std::vector<Port> ports;
    std::error_code error;
    for (fs::directory_iterator entry(folder, error), end; !error && entry != end;
         entry.increment(error)) {
        std::error_code none;
        const fs::path port = entry->path();
        std::string name = port.filename().string();
        if ((fs::exists(port / "device", none) && HasHardware(port)) || NeedsNoDevice(name))
            ports.push_back({IsOnUsb(port), std::move(name)});
    }
    // Boards are on USB, and the mainboard's own ports are mostly unused. ttyUSB2 comes before
    // ttyUSB10.
    std::ranges::sort(ports, [](const Port& a, const Port& b) {
        return std::tuple(!a.onUsb, a.name.size(), std::string_view(a.name)) <
               std::tuple(!b.onUsb, b.name.size(), std::string_view(b.name));
    });
    std::vector<std::string> names;
    names.reserve(ports.size());
    for (Port& port : ports) names.push_back(std::move(port.name));
    return names;
}

#endif
