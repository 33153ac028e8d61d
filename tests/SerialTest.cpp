// The list of ports, the connection, and its hand-over to the tool, on pseudo terminals.
#include <asm/termbits.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <QPushButton>
#include <filesystem>

#include "Device.h"
#include "Testing.h"

namespace {

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
    // By keyboard: the button stands outside the window. True when that is the outcome.
    bool PressConnect(bool connected) const {
        Widget<QWidget>("ConnectPB")->setFocus();
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Space);
        return Shows(connected);
    }
    QString Run(
        const std::string& command, const std::function<void()>& meanwhile = [] {}) const {
        window.InstallEF().Text(command);
        Click("StartPB");
        meanwhile();
        if (!QTest::qWaitFor([this] { return window.StartPB().Enabled(); })) return "hangs";
        return QString::fromStdString(window.rEF().Text()).mid(8);
    }

    PopupMenu& ports = window.PortPM();
};

}  // namespace

class SerialTest : public QObject {
    Q_OBJECT
  private slots:
    // "connections|memory|list|row": devices A to G are connected one after the other, which leaves
    // that memory; a rescan that finds that list selects that row.
    void Selection() {
        const Device devices[7];
        const auto names = [&devices](const QByteArray& letters) {
            std::vector<std::string> found;
            for (const char letter : letters) found.push_back(devices[letter - 'A'].name);
            return found;
        };
        for (const char* row :
             {"A|A||-1", "||BA|0", "BA|AB|CAB|1", "BA|AB|AB|1", "A|A|BC|0", "A|A|BAA|1",
              "AAB|BA|BA|1", "ABA|ABA|CBA|2", "ABCDEFG|GFEDCB|AB|1"}) {
            const QByteArrayList parts = QByteArray(row).split('|');
            const Terminal terminal(names("ABCDEFG"));
            for (const char letter : parts[0]) {
                terminal.ports.ListIndex(letter - 'A');
                QVERIFY2(terminal.PressConnect(true) && terminal.PressConnect(false), row);
            }
            terminal.Scan(names(parts[2]));
            auto remembered = names(parts[1]);
            remembered.resize(6);
            QVERIFY2(std::ranges::equal(terminal.window.mPortName, remembered), row);
            const int selected = parts[3].toInt();
            const PopupMenu& ports = terminal.ports;
            QVERIFY2(ports.ListIndex() == selected && ports.ListCount() == parts[2].size(), row);
            QCOMPARE(ports.Text(), selected < 0 ? "" : names(parts[2])[size_t(selected)]);
        }
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
        QCOMPARE(terminal.Run("readlink /proc/$PPID/fd/* | grep -cx " + device.path), "0\n");
        // It takes the port that is chosen when the run ends.
        terminal.Run(":", [&] { terminal.ports.ListIndex(0); });
        QVERIFY(terminal.Shows(true));
        QCOMPARE(terminal.window.mPortName[0], other.name);
        // A connection made during the run is toggled at its end.
        terminal.Run("sleep .1", [&] { QVERIFY(terminal.PressConnect(true)); });
        QVERIFY(terminal.Shows(false));
        QTRY_COMPARE(OpenFiles(), filesBefore);
        terminal.Run(":");  // none before it, none after it
        QVERIFY(terminal.Shows(false));
    }

    void Settings() {
        for (const QByteArray row : {"115200", "2400 Xon", "921600 Cts", "76800 Xon Cts"}) {
            const std::string rate = row.split(' ')[0].toStdString();
            const bool xon = row.contains("Xon"), cts = row.contains("Cts");
            const Device device;
            const Terminal terminal({device.name});
            QTest::keyClicks(terminal.Widget<QWidget>("BaudPM"), rate.c_str());
            if (xon) QTest::keyClick(terminal.Widget<QWidget>("XonCB"), Qt::Key_Space);
            if (cts) QTest::keyClick(terminal.Widget<QWidget>("CtsCB"), Qt::Key_Space);
            QVERIFY(terminal.PressConnect(true));
            QCOMPARE(terminal.window.mLastBaudRate, rate);
            QTest::keyClick(terminal.Widget<QWidget>("BaudPM"), Qt::Key_Up);  // for the next time
            termios2 port{};
            QCOMPARE(ioctl(device.fd, TCGETS2, &port), 0);
            QVERIFY(port.c_ospeed == std::stoul(rate) && port.c_ispeed == port.c_ospeed);
            QCOMPARE(port.c_cflag & (CSIZE | PARENB | CSTOPB | CRTSCTS), CS8 | (cts ? CRTSCTS : 0));
            QCOMPARE(port.c_iflag & (IXON | IXOFF), xon ? IXON | IXOFF : 0U);
            QCOMPARE(port.c_lflag & (ICANON | ECHO | ISIG), 0U);
        }
    }

    void FailuresOfThePort() {
        auto device = std::make_unique<Device>();
        const std::vector<std::string> none, listed = {"null", "nowhere", device->name};
        const Terminal terminal(none);
        const int lock = open(device->path.c_str(), O_RDWR | O_NOCTTY);
        QCOMPARE(flock(lock, LOCK_EX | LOCK_NB), 0);
        const auto files = OpenFiles();
        const auto fails = [&] { return terminal.PressConnect(false) && OpenFiles() == files; };
        QVERIFY(fails());  // no port
        terminal.Scan(listed);
        for (const int row : {0, 1, 2}) {  // no terminal, no device, somebody else's
            terminal.ports.ListIndex(row);
            QVERIFY(fails());
        }
        terminal.Ports(none);
        QVERIFY(fails());  // gone since the scan
        QCOMPARE(terminal.window.mPortName[0], "");
        terminal.Ports(listed);
        close(lock);
        QVERIFY(terminal.PressConnect(true));
        // Pulled out, it is let go at once, which the window doesn't show.
        device.reset();
        QTRY_COMPARE(OpenFiles(), files - 2);  // without the lock's and the device's own
        QVERIFY(terminal.Shows(true) && terminal.PressConnect(false));
    }
};

QUILLSTONE_TEST(SerialTest)
#include "SerialTest.moc"
