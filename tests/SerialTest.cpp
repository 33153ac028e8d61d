// The list of ports, the connection, and its hand-over to the tool, on pseudo terminals.
#include <sys/file.h>
#include <termios.h>

#include <QAbstractEventDispatcher>
#include <QPushButton>
#include <filesystem>

#include "Device.h"
#include "Testing.h"
#include "platform/SerialRate.h"

namespace {

using Devices = QList<int>;  // by number
enum : int { A, B, C, D, E, F, G };

auto OpenFiles() { return std::distance(std::filesystem::directory_iterator("/dev/fd"), {}); }

struct Terminal : PreparedFolder, OpenedWindow {
    explicit Terminal(const std::vector<std::string>& names) { Scan(names); }

    void Scan(const std::vector<std::string>& names) const {
        Ports(names);
        Click("ScanBtn");
    }
    // Button and state say the same.
    bool Shows(bool connected) const {
        return window.mConnected == connected &&
               Widget<QPushButton>("ConnectPB")->text() == (connected ? "Disconnect" : "Connect");
    }
    void PressSpace(const char* name) const {
        Widget<QWidget>(name)->setFocus();
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Space);
    }
    // By keyboard: the button stands outside the window. True when that is the outcome.
    bool PressConnect(bool connected) const {
        PressSpace("ConnectPB");
        return Shows(connected);
    }
    // Tells whether the run has ended.
    bool RunAnd(const std::function<void()>& meanwhile) const {
        Start("sleep .1");
        meanwhile();
        return Output() == "";
    }

    PopupMenu& ports = window.PortPM();
};

}  // namespace

class SerialTest : public QObject {
    Q_OBJECT
  private slots:
    void Selection_data() {
        // Connected one after the other, remembered then; found by the next scan, and selected
        // there.
        const auto row =
            Columns<Devices, Devices, Devices, int>("connected", "remembered", "found", "selected");
        row("no port", {A}, {A}, {}, -1);
        row("nothing remembered", {}, {}, {B, A}, 0);
        row("the last one", {B, A}, {A, B}, {C, A, B}, 1);
        row("an older one below the last", {B, A}, {A, B}, {A, B}, 1);
        row("the last one is gone", {A}, {A}, {B, C}, 0);
        row("one that is listed twice", {A}, {A}, {B, A, A}, 1);
        row("one remembered twice", {A, B, A}, {A, B, A}, {C, B, A}, 2);
        row("six are remembered", {A, B, C, D, E, F, G}, {G, F, E, D, C, B}, {A, B}, 1);
    }
    void Selection() {
        const auto [connected, remembered, found] =
            Row<Devices, Devices, Devices>("connected", "remembered", "found");
        const Device devices[7];
        const auto names = [&devices](const Devices& numbers) {
            std::vector<std::string> result;
            for (const int number : numbers) result.push_back(devices[number].name);
            return result;
        };
        const Terminal terminal(names({A, B, C, D, E, F, G}));
        for (const int number : connected) {
            terminal.ports.ListIndex(number);
            QVERIFY(terminal.PressConnect(true) && terminal.PressConnect(false));
        }
        auto memory = names(remembered);
        memory.resize(6);
        QVERIFY(std::ranges::equal(terminal.window.mPortName, memory));
        terminal.Scan(names(found));
        QCOMPARE(terminal.ports.ListCount(), found.size());
        QTEST(int(terminal.ports.ListIndex()), "selected");
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
        QVERIFY(terminal.Shows(true));
        // The tool has the device for itself, and the window has it again afterwards.
        terminal.ports.ListIndex(1);
        bool inUse = true;
        QVERIFY(terminal.RunAnd([&] { inUse = device.InUse(); }));
        QVERIFY(!inUse && device.InUse());
        // It takes the port that is chosen when the run ends.
        QVERIFY(terminal.RunAnd([&] { terminal.ports.ListIndex(0); }));
        QVERIFY(terminal.Shows(true) && !device.InUse() && other.InUse());
        // A connection made during the run is toggled at its end.
        bool connected = false;
        QVERIFY(terminal.RunAnd([&] { connected = terminal.PressConnect(true); }));
        QVERIFY(connected && terminal.Shows(false));
        QTRY_COMPARE(OpenFiles(), filesBefore);
        QCOMPARE(terminal.Run(":"), "");  // none before it, none after it
        QVERIFY(terminal.Shows(false));
    }

    void Settings_data() {
        const auto row = Columns<int, bool, bool>("rate", "xon", "cts");
        row("as the window starts", 115200, false, false);
        row("lowest rate, XON", 2400, true, false);
        row("highest rate, CTS", 921600, false, true);
        row("both kinds of flow control", 9600, true, true);
        row("a rate that the system's tables lack", 76800, false, false);
    }
    void Settings() {
        const auto [rate, xon, cts] = Row<int, bool, bool>("rate", "xon", "cts");
        const Device device;
        const Terminal terminal({device.name});
        QTest::keyClicks(terminal.Widget<QWidget>("BaudPM"), QString::number(rate));
        if (xon) terminal.PressSpace("XonCB");
        if (cts) terminal.PressSpace("CtsCB");
        QVERIFY(terminal.PressConnect(true));
        QCOMPARE(terminal.window.mLastBaudRate, std::to_string(rate));
        QTest::keyClick(terminal.Widget<QWidget>("BaudPM"), Qt::Key_Up);  // for the next time
        QCOMPARE(SerialRate(device.fd), rate);
        termios port{};
        QCOMPARE(tcgetattr(device.fd, &port), 0);
        QCOMPARE(port.c_cflag & (CSIZE | PARENB | CSTOPB | CRTSCTS), CS8 | (cts ? CRTSCTS : 0));
        QCOMPARE(port.c_iflag & (IXON | IXOFF), xon ? IXON | IXOFF : tcflag_t());
        QCOMPARE(port.c_lflag & (ICANON | ECHO | ISIG), tcflag_t());
    }

    void FailuresOfThePort() {
        const Device device;
        const std::vector<std::string> none, listed = {"null", "nowhere", device.name};
        const Terminal terminal(none);
        const int lock = open(device.path.c_str(), O_RDWR | O_NOCTTY);
        QCOMPARE(flock(lock, LOCK_EX | LOCK_NB), 0);
        const auto files = OpenFiles();
        QVERIFY(terminal.PressConnect(false));  // no port
        terminal.Scan(listed);
        for (const int row : {0, 1, 2}) {  // no terminal, no device, somebody else's
            terminal.ports.ListIndex(row);
            QVERIFY(terminal.PressConnect(false));
        }
        terminal.Ports(none);
        QVERIFY(terminal.PressConnect(false));  // gone since the scan
        QVERIFY(OpenFiles() == files && terminal.window.mPortName[0].empty());
        terminal.Ports(listed);
        QCOMPARE(flock(lock, LOCK_UN), 0);
        QVERIFY(terminal.PressConnect(true));
        QCOMPARE(flock(lock, LOCK_EX | LOCK_NB), -1);  // nobody else gets it now
        close(lock);
    }

    void UnpluggedDeviceIsLetGo() {
        auto device = std::make_unique<Device>();
        const Device next;
        const Terminal terminal({device->name, next.name});
        const auto files = OpenFiles();
        QVERIFY(terminal.PressConnect(true));
        device.reset();
        QTRY_COMPARE(OpenFiles(), files - 1);  // without the device's own
        // A port that is still looked at would keep the event loop busy for good.
        QTRY_VERIFY(!QAbstractEventDispatcher::instance()->processEvents(QEventLoop::AllEvents));
        // The window doesn't show it; the next press disconnects, the one after connects.
        QVERIFY(terminal.Shows(true) && terminal.PressConnect(false));
        terminal.ports.ListIndex(1);
        QVERIFY(terminal.PressConnect(true) && next.InUse());
    }

    void DeviceNeverWaitsForUs() {
        const Device device;
        const Terminal terminal({device.name});
        QVERIFY(terminal.PressConnect(true));
        QCOMPARE(fcntl(device.fd, F_SETFL, O_NONBLOCK), 0);
        const QByteArray text(1000, 'x');
        for (ssize_t sent = 0; sent < 300'000;) {  // more than any buffer on the way holds
            ssize_t count = 0;
            const auto sends = [&] { return (count = write(device.fd, text.data(), 1000)) > 0; };
            QVERIFY(QTest::qWaitFor(sends));
            sent += count;
        }
        QCOMPARE(terminal.window.rEF().Text(), "Install ....");
    }
};

QUILLSTONE_TEST(SerialTest)
#include "SerialTest.moc"
