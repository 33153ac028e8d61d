#include "platform/Serial.h"

#include <sys/file.h>
#include <sys/ioctl.h>
#include <termios.h>

#include <QSerialPort>
#include <limits>

#include "platform/QtText.h"

namespace {

// A driver without modem lines refuses, and has nothing to set.
void SetLines(int descriptor, bool rts, bool dtr) {
    int lines = 0;
    if (ioctl(descriptor, TIOCMGET, &lines) != 0) return;
    lines = rts ? lines | TIOCM_RTS : lines & ~TIOCM_RTS;
    lines = dtr ? lines | TIOCM_DTR : lines & ~TIOCM_DTR;
    ioctl(descriptor, TIOCMSET, &lines);
}

// The toolkit offers one kind of flow control or the other.
void AddSoftwareFlowControl(int descriptor) {
    termios mode{};
    if (tcgetattr(descriptor, &mode) != 0) return;
    mode.c_iflag |= IXON | IXOFF;
    tcsetattr(descriptor, TCSANOW, &mode);
}

}  // namespace

class Serial::Port : public QSerialPort {
  public:
    explicit Port(Serial& serial) {
        connect(this, &QSerialPort::readyRead, this,
                [&serial] { serial.Raise(serial.DataAvailable); });
    }

    bool OpenWith(const Settings& settings) {
        if (settings.baud <= 0 || settings.baud > std::numeric_limits<qint32>::max()) return false;
        setPortName(ToQt(std::string(kDevicePrefix) + settings.name));
        setBaudRate(static_cast<qint32>(settings.baud));
        setFlowControl(settings.cts   ? HardwareControl
                       : settings.xon ? SoftwareControl
                                      : NoFlowControl);
        if (!open(ReadWrite)) return false;
        SetLines(handle(), settings.rts, settings.dtr);
        // The kernel's exclusive mode doesn't bind a privileged process; serial programs agree on
        // this lock besides.
        if (flock(handle(), LOCK_EX | LOCK_NB) != 0) return false;
        if (settings.cts && settings.xon) AddSoftwareFlowControl(handle());
        // An open port without its device would raise this error without end.
        connect(this, &QSerialPort::errorOccurred, this, [this](SerialPortError error) {
            if (error == ResourceError || error == ReadError)
                QMetaObject::invokeMethod(
                    this, [this] { close(); }, Qt::QueuedConnection);
        });
        return true;
    }
};

Serial::Serial(Window&, std::string name) : Control(std::move(name)) {}

Serial::~Serial() = default;

void Serial::SerialPort(const ::SerialPort& port) { mSettings.name = port.Name(); }

bool Serial::Open() {
    Close();
    auto port = std::make_unique<Port>(*this);
    if (!port->OpenWith(mSettings)) return false;
    mPort = std::move(port);
    return true;
}

void Serial::Close() { mPort.reset(); }

std::string Serial::ReadAll(TextEncoding encoding) {
    return mPort ? DefineEncoding(mPort->readAll().toStdString(), encoding) : std::string();
}

void Serial::Flush() {
    if (mPort) mPort->flush();
}
