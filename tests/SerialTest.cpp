// The list of ports, the connection, and how a run takes the port over. The ports are pseudo
// terminals.
#include <sys/file.h>
#include <termios.h>

#include <QAbstractEventDispatcher>
#include <QPushButton>
#include <filesystem>

#include "Device.h"
#include "Testing.h"
#include "platform/serial/private/SerialRate.h"

namespace {

auto OpenFiles() { return std::distance(std::filesystem::directory_iterator("/dev/fd"), {}); }

struct Terminal : PreparedFolder, OpenedWindow {
    explicit Terminal(const std::vector<std::string>& names) { Scan(names); }
    void Scan(const std::vector<std::string>& names) const {
        Ports(names);
        Click("ScanBtn");
    }
    // Presses Connect. True if it is connected then as expected, and button and state agree.
    bool PressConnect(bool connected) const {
        return OpenedWindow::PressConnect() == connected && Shows(connected);
    }
    // Presses Connect. True if that fails with one beep.
    bool PressConnectInVain() const {
        const int before = System().Beeps;
        return PressConnect(false) && System().Beeps == before + 1;
    }
    bool Shows(bool connected) const {
        return window.mConnected == connected &&
               Widget<QPushButton>("ConnectPB")->text() == (connected ? "Disconnect" : "Connect");
    }
    PopupMenu& ports = window.PortPM();
};

}  // namespace

class SerialTest : public QObject {
    Q_OBJECT
  private slots:
#ifdef __linux__
    // A terminal is written as its name, its device and the kernel's number for its type.
    void PortsOfTheMachine() {
        const PreparedFolder folder;
        folder.Write("usb/idVendor", "");
        for (const QString terminal :
             {"ttyS0 pci 4", "ttyS1 pci 0", "ttyUSB10 usb/1", "ttyUSB2 usb/2", "ttyACM0 usb/3",
              "tty1", "ptmx", "rfcomm0", "tnt0", "ttyGS0"}) {
            const QStringList words = terminal.split(' ');
            const QString port = "tty/" + words[0];
            folder.Write(port + "/type", words.value(2, "1").toUtf8());
            if (words.size() == 1) continue;
            QDir().mkpath(folder.Path(words[1]));
            QVERIFY(QFile::link(folder.Path(words[1]), folder.Path(port + "/device")));
        }
        const std::vector<std::string> usbFirst{"ttyACM0", "ttyUSB2", "ttyUSB10", "tnt0",
                                                "ttyS0",   "ttyGS0",  "rfcomm0"};
        QVERIFY(MachinePortNames(folder.Path("tty").toStdString()) == usbFirst);
        QVERIFY(MachinePortNames(folder.Path("none").toStdString()).empty());
    }
#endif

    // The window remembers the ports of the last six connects.
    void Selection() {
        const Device devices[7];
        const Terminal terminal({});
        for (const int number : {0, 1, 2, 3, 4, 5, 4}) {
            terminal.Scan({devices[number].name});
            QVERIFY(terminal.PressConnect(true) && terminal.PressConnect(false));
        }
        const auto selected = [&](int first, int second, int third) {
            terminal.Scan({devices[first].name, devices[second].name, devices[third].name});
            return terminal.ports.ListIndex();
        };
        QCOMPARE(selected(6, 5, 4), 2);  // the last one, though it was connected before too
        QCOMPARE(selected(4, 6, 1), 2);  // an older one below the last
        QCOMPARE(selected(6, 0, 0), 0);  // none
    }

    void ConnectionAndRun() {
        const Device device, other;
        const auto filesBefore = OpenFiles();
        const Terminal terminal({other.name, device.name});
        terminal.ports.ListIndex(1);
        QVERIFY(terminal.PressConnect(true));
        // Neither a rescan nor another choice touches the connection.
        terminal.Click("ScanBtn");
        QVERIFY(terminal.ports.ListIndex() == 1 && terminal.Shows(true));
        terminal.ports.ListIndex(0);
        QVERIFY(terminal.Shows(true) && device.InUse());
        // During the run only the tool has the device. At its end the window connects the port
        // that is chosen by then.
        terminal.Start("sleep .1");
        QVERIFY(!device.InUse() && terminal.Output() != "hangs");
        QVERIFY(terminal.Shows(true) && !device.InUse() && other.InUse());
        // A connection made during the run is toggled at its end.
        terminal.Start("sleep .1");
        QVERIFY(terminal.PressConnect(true) && terminal.Output() != "hangs");
        QVERIFY(terminal.Shows(false));
        QTRY_COMPARE(OpenFiles(), filesBefore);
        QVERIFY(terminal.Run(":") != "hangs" && terminal.Shows(false));  // none before, none after
    }

    void Settings_data() {
        const auto row = Columns<int, bool, bool>("rate", "xon", "cts");
        row("XON", 2400, true, false);
        row("CTS, the highest rate", 921600, false, true);
        row("a rate that the system's tables lack", 14400, false, false);
    }
    void Settings() {
        const auto [rate, xon, cts] = Row<int, bool, bool>("rate", "xon", "cts");
        const Device device;
        const Terminal terminal({device.name});
        QTest::keyClicks(terminal.Widget<QWidget>("BaudPM"), QString::number(rate));
        if (xon) QTest::keyClick(terminal.Widget<QWidget>("XonCB"), Qt::Key_Space);
        if (cts) QTest::keyClick(terminal.Widget<QWidget>("CtsCB"), Qt::Key_Space);
        QVERIFY(terminal.PressConnect(true));
        QCOMPARE(SerialRate(device.fd), rate);
        termios port{};
        QCOMPARE(tcgetattr(device.fd, &port), 0);
        QCOMPARE(port.c_cflag & (CSIZE | PARENB | CSTOPB | CRTSCTS), CS8 | (cts ? CRTSCTS : 0));
        QCOMPARE(port.c_iflag & (IXON | IXOFF), xon ? IXON | IXOFF : tcflag_t());
        QCOMPARE(port.c_lflag & (ICANON | ECHO | ISIG), tcflag_t());
    }

    void FailuresOfThePort() {
        const Device device;
        const Terminal terminal({});
        const int lock = open(device.path.c_str(), O_RDWR | O_NOCTTY);
        QCOMPARE(flock(lock, LOCK_EX | LOCK_NB), 0);
        const auto files = OpenFiles();
        QVERIFY(terminal.PressConnectInVain());  // no port
        for (const std::string& name : {std::string("null"), std::string("nowhere"), device.name}) {
            terminal.Scan({name});  // no terminal, no device, somebody else's
            QVERIFY(terminal.PressConnectInVain());
        }
        QCOMPARE(OpenFiles(), files);
        QCOMPARE(flock(lock, LOCK_UN), 0);
        terminal.Ports({});
        QVERIFY(terminal.PressConnectInVain());  // gone since the scan
        terminal.Ports({device.name});
        QVERIFY(terminal.PressConnect(true));
        QCOMPARE(flock(lock, LOCK_EX | LOCK_NB), -1);  // nobody else gets it now
        close(lock);
    }

    void UnpluggedDeviceIsLetGo() {
        auto device = std::make_unique<Device>(), next = std::make_unique<Device>();
        const Terminal terminal({device->name, next->name});
        const auto files = OpenFiles();
        QVERIFY(terminal.PressConnect(true));
        device.reset();
        QTRY_COMPARE(OpenFiles(), files - 1);  // the other one was the device's own
        // A port that is still watched would keep the event loop busy for good.
        QTRY_VERIFY(!QAbstractEventDispatcher::instance()->processEvents(QEventLoop::AllEvents));
        // The button still shows Disconnect. One press disconnects, the next one connects.
        QVERIFY(terminal.Shows(true) && terminal.PressConnect(false));
        terminal.ports.ListIndex(1);
        QVERIFY(terminal.PressConnect(true) && next->InUse());
        next.reset();
        QVERIFY(terminal.Run("echo x") == "x\n" && terminal.Shows(false));
    }

    void DeviceNeverWaitsForUs() {
        const Device device;
        const Terminal terminal({device.name});
        QVERIFY(terminal.PressConnect(true));
        QCOMPARE(fcntl(device.fd, F_SETFL, O_NONBLOCK), 0);
        const std::string text(1000, 'x');
        const auto sends = [&] { return write(device.fd, text.data(), text.size()) > 0; };
        // More than any buffer on the way holds.
        for (int i = 0; i < 1000; ++i) QVERIFY(QTest::qWaitFor(sends));
    }
};

QUILLSTONE_TEST(SerialTest)
#include "SerialTest.moc"
