#include "platform/serial/Serial.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

#include <QSocketNotifier>
#include <array>
#include <cerrno>
#include <utility>

#include "platform/serial/private/SerialRate.h"

// The open device. Qt's class for it isn't used: in some versions of Qt it doesn't notice that a
// device has gone away, and then keeps the processor busy for good.
class Serial::Port {
  public:
    explicit Port(Serial& serial) : mSerial(serial) {}
    ~Port() {
        if (mDescriptor >= 0 && mOurs) tcsetattr(mDescriptor, TCSANOW, &mFound);
        Release();
    }
    Port(const Port&) = delete;
    Port& operator=(const Port&) = delete;

    // Returns false on failure. The destructor closes the device in either case.
    bool Open(const Settings& settings) {
        // Without O_NONBLOCK, open() would wait for a carrier.
        mDescriptor = open(settings.devicePath.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
        // Exclusive mode (TIOCEXCL) doesn't keep out a privileged process. Other serial programs
        // take this lock too.
        if (mDescriptor < 0 || flock(mDescriptor, LOCK_EX | LOCK_NB) != 0) return false;
        if (tcgetattr(mDescriptor, &mFound) != 0 || ioctl(mDescriptor, TIOCEXCL) != 0) return false;
        mOurs = true;
        if (!Prepare(settings)) return false;
        SetLines(settings);
        mNotifier = std::make_unique<QSocketNotifier>(mDescriptor, QSocketNotifier::Read);
        QObject::connect(mNotifier.get(), &QSocketNotifier::activated, [this] { Receive(); });
        return true;
    }

    std::string TakeReceived() {
        if (mDescriptor >= 0) mNotifier->setEnabled(true);
        return std::exchange(mReceived, {});
    }

  private:
    bool Prepare(const Settings& settings) const {
        termios mode = mFound;
        cfmakeraw(&mode);  // eight bits, no parity
        mode.c_cflag &= ~static_cast<tcflag_t>(CSTOPB | CRTSCTS);
        mode.c_cflag |= CREAD | CLOCAL;
        mode.c_iflag &= ~static_cast<tcflag_t>(IXON | IXOFF | IXANY | INPCK);
        if (settings.cts) mode.c_cflag |= CRTSCTS;
        if (settings.xon) mode.c_iflag |= IXON | IXOFF;
        // With these values read() fails with EAGAIN while there is no data, and returns 0 only
        // after a hang-up.
        mode.c_cc[VMIN] = 1;
        mode.c_cc[VTIME] = 0;
        return tcsetattr(mDescriptor, TCSANOW, &mode) == 0 &&
               SetSerialRate(mDescriptor, settings.baud);
    }

    // These calls fail where the driver has no modem lines. With hardware flow control RTS belongs
    // to the driver. If it were lowered here, the device would never send.
    void SetLines(const Settings& settings) const {
        if (settings.cts) {
            const int dtr = TIOCM_DTR;
            ioctl(mDescriptor, settings.dtr ? TIOCMBIS : TIOCMBIC, &dtr);
            return;
        }
        int lines = 0;
        if (ioctl(mDescriptor, TIOCMGET, &lines) != 0) return;
        lines = settings.rts ? lines | TIOCM_RTS : lines & ~TIOCM_RTS;
        lines = settings.dtr ? lines | TIOCM_DTR : lines & ~TIOCM_DTR;
        ioctl(mDescriptor, TIOCMSET, &lines);
    }

    // A hang-up makes the descriptor readable for good, so Release disables the notifier.
    void Receive() {
        std::array<char, 4096> bytes{};
        const ssize_t count = read(mDescriptor, bytes.data(), bytes.size());
        if (count > 0) {
            mReceived.append(bytes.data(), static_cast<std::size_t>(count));
            mNotifier->setEnabled(false);
            // The last statement: a handler may close the port, which destroys this object.
            mSerial.Raise(mSerial.DataAvailable);
        } else if (count == 0 || (errno != EAGAIN && errno != EINTR)) {
            Release();
        }
    }

    void Release() {
        if (mNotifier) mNotifier->setEnabled(false);
        if (mDescriptor < 0) return;
        if (mOurs) ioctl(mDescriptor, TIOCNXCL);
        close(mDescriptor);
        mDescriptor = -1;
    }

    Serial& mSerial;
    int mDescriptor = -1;  // -1 also after a hang-up
    std::unique_ptr<QSocketNotifier> mNotifier;
    bool mOurs = false;  // this object has set the exclusive mode
    termios mFound{};    // the settings before Open, restored by the destructor
    std::string mReceived;
};

Serial::Serial(Window&, std::string name) : Control(std::move(name)) {}

Serial::~Serial() = default;

void Serial::SerialPort(const ::SerialPort& port) { mSettings.devicePath = port.DevicePath(); }

bool Serial::Open() {
    Close();
    auto port = std::make_unique<Port>(*this);
    if (!port->Open(mSettings)) return false;
    mPort = std::move(port);
    return true;
}

void Serial::Close() { mPort.reset(); }

std::string Serial::ReadAll(TextEncoding encoding) {
    return mPort ? DefineEncoding(mPort->TakeReceived(), encoding) : std::string();
}
