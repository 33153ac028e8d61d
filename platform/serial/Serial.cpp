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

// The device itself, without Qt's class for it: that one doesn't notice with every version of Qt
// that a device has gone away, and then keeps the processor busy for good.
class Serial::Port {
  public:
    explicit Port(Serial& serial) : mSerial(serial) {}
    ~Port() {
        if (mDescriptor >= 0 && mOurs) tcsetattr(mDescriptor, TCSANOW, &mFound);
        Release();
    }
    Port(const Port&) = delete;
    Port& operator=(const Port&) = delete;

    // After false, the destructor closes what has been opened.
    bool Open(const Settings& settings) {
        // Without O_NONBLOCK it would wait for a carrier.
        mDescriptor = open(settings.devicePath.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
        // The kernel's exclusive mode doesn't bind a privileged process; serial programs agree on
        // the lock besides.
        if (mDescriptor < 0 || flock(mDescriptor, LOCK_EX | LOCK_NB) != 0) return false;
        if (tcgetattr(mDescriptor, &mFound) != 0 || ioctl(mDescriptor, TIOCEXCL) != 0) return false;
        mOurs = true;
        if (!Prepare(settings)) return false;
        SetLines(settings.rts, settings.dtr);
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
        // With these a read of nothing means a hang-up, never that there is no data yet.
        mode.c_cc[VMIN] = 1;
        mode.c_cc[VTIME] = 0;
        return tcsetattr(mDescriptor, TCSANOW, &mode) == 0 &&
               SetSerialRate(mDescriptor, settings.baud);
    }

    // A driver without modem lines refuses, and has nothing to set.
    void SetLines(bool rts, bool dtr) const {
        int lines = 0;
        if (ioctl(mDescriptor, TIOCMGET, &lines) != 0) return;
        lines = rts ? lines | TIOCM_RTS : lines & ~TIOCM_RTS;
        lines = dtr ? lines | TIOCM_DTR : lines & ~TIOCM_DTR;
        ioctl(mDescriptor, TIOCMSET, &lines);
    }

    // Qt calls this for a hang-up too, and again and again until the descriptor is no longer
    // looked at.
    void Receive() {
        std::array<char, 4096> bytes{};
        const ssize_t count = read(mDescriptor, bytes.data(), bytes.size());
        if (count > 0) {
            mReceived.append(bytes.data(), static_cast<std::size_t>(count));
            mNotifier->setEnabled(false);
            // Last, since a handler may close the port.
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
    bool mOurs = false;  // from the moment that nobody else has it
    termios mFound{};    // how the terminal was before, for those that use it after us
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
