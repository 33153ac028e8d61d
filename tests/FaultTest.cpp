// What goes wrong around the program, and what a thousand jobs leave behind. README.md has the
// whole list of faults, with the tests of the other files.
#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>

#include <QProcess>
#include <QRandomGenerator>
#include <QRegularExpression>
#include <filesystem>
#include <fstream>

#include "Device.h"
#include "Testing.h"

namespace {

struct Operated : OpenedWindow {
    explicit Operated(const std::vector<std::string>& ports = {}) {
        System().PortNames = [ports] { return ports; };
        Click("ScanBtn");
    }
    // By keyboard: the button stands outside the window.
    bool PressConnect() const {
        Widget<QWidget>("ConnectPB")->setFocus();
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Space);
        return window.mConnected;
    }
    QString Output() const {
        while (!window.StartPB().Enabled())
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        return QString::fromStdString(window.rEF().Text()).mid(8);
    }
    QString Run(const std::string& command) const {
        window.InstallEF().Text(command);
        Click("StartPB");
        return Output();
    }
};

// Descriptors, and pages in memory.
std::pair<std::ptrdiff_t, std::ptrdiff_t> Used() {
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    std::ptrdiff_t pages = 0;
    std::ifstream("/proc/self/statm") >> pages >> pages;  // the second figure
    return {std::distance(std::filesystem::directory_iterator("/dev/fd"), {}), pages};
}

// A second copy of the program: tells whether it gets the port and what its tool prints, and keeps
// what it has until its input ends.
int SecondCopy(const char* port) {
    InitializeFramework([port] {
        const Operated copy(std::vector<std::string>{port});
        const char* got = copy.PressConnect() ? "connected" : "refused";
        std::printf("%s, %s", got, qPrintable(copy.Run("echo ran")));
        std::fflush(stdout);
        std::getchar();
    });
    return EndFramework();
}

}  // namespace

class FaultTest : public QObject {
    Q_OBJECT
  private slots:
    // First of all: what a larger heap has freed would take what is lost here.
    void ThousandTimes() {
        for (const bool runs : {false, true}) {
            const Device device;
            const Operated operated({device.name});
            if (runs) QVERIFY(operated.PressConnect());
            auto afterTen = Used();
            for (int i = 0; i < 1000; ++i) {
                QCOMPARE(write(device.fd, "boot\r\n", 6), 6);
                if (runs)
                    QCOMPARE(operated.Run("echo x"), QString("x\n"));
                else
                    QVERIFY(operated.PressConnect());
                QVERIFY(runs ? operated.window.mConnected : !operated.PressConnect());
                if (i == 9) afterTen = Used();
            }
            const auto [files, pages] = Used();
            qInfo("descriptors %td, then %td; pages %td, then %td", afterTen.first, files,
                  afterTen.second, pages);
            QCOMPARE(files, afterTen.first);
#ifndef __SANITIZE_ADDRESS__  // which keeps what has been freed
            QVERIFY(pages - afterTen.second < 64);
#endif
        }
    }

    // What goes wrong with the loaded job before Start, or while its tool waits, and what the user
    // then reads. @ is the base folder.
    void FilesGo() {
        // clang-format off
        const std::array<const char*, 3> rows[] = {
            {"rm @/bin/i.bin", ".*i.bin: No such file.*ended\n", ".*i.bin: No such file.*ended\n"},
            {"ln -sf /proc/self/mem @/bin/i.bin", ".*i.bin.*rror\nended\n", ".*i.bin.*rror\nended\n"},
            {"rm @/bin/installsetting.csv", "begun\nended\n", "begun\nended\n"},
            {"rm @/esptool/esptool", ".*not found\n", "begun\nended\n"},
            {"rm @/esptool/esptool; mkdir @/esptool/esptool", ".*denied\n", "begun\nended\n"},
            {"chmod a-x @/esptool/esptool", ".*denied\n", "begun\nended\n"},
            {"echo echo new >@/n; chmod +x @/n; mv @/n @/esptool/esptool", "new\n", "begun\nended\n"},
            {"mv @ @.gone; rm -r @.gone", ".*not found\n", ".*cannot create.*ended\n"},
            {"ln -s /dev/full @/flash", ".*No space left.*ended\n", ".*No space left.*ended\n"}};
        // clang-format on
        for (const auto& [fault, outputBefore, outputRunning] : rows) {
            for (const bool running : {false, true}) {
                const PreparedFolder folder("a/b/base");
                const QString wait = folder.WriteTool(
                                         "echo begun; while [ -e \"$0.wait\" ]; do sleep .01; "
                                         "done; for f; do :; done\n"
                                         "cat \"$f\" >\"${0%/*/*}/flash\"; echo ended; exit\n") +
                                     ".wait";
                folder.Write("bin/installsetting.csv", "up,i.bin,0");
                folder.Write("bin/i.bin", "image");
                const Operated operated;
                if (running) {
                    folder.Write("esptool/esptool.wait", "");
                    operated.Click("StartPB");
                    QTRY_VERIFY(operated.window.rEF().Text().ends_with("begun\n"));
                }
                QCOMPARE(system(qPrintable(QString(fault).replace("@", folder.Path()))), 0);
                QFile::remove(wait);
                if (!running) operated.Click("StartPB");
                const QRegularExpression output(
                    QRegularExpression::anchoredPattern(running ? outputRunning : outputBefore),
                    QRegularExpression::DotMatchesEverythingOption);
                const QString shown = operated.Output();
                QVERIFY2(output.match(shown).hasMatch(), fault + QByteArray(qPrintable(shown)));
                // The list is as it was, and the user goes on.
                QVERIFY(operated.window.ulb().Cell(0, 0).starts_with("i.bin ("));
                QTest::keyClicks(operated.Widget<QWidget>("ResetEF"), "x");
                const std::string command = operated.window.InstallEF().Text();
                QVERIFY(command.find("esptool -vv -cd ckx ") != std::string::npos);
                QCOMPARE(command.ends_with("i.bin"), QFile::exists(folder.Path("bin/i.bin")));
                QVERIFY(operated.Run("echo \"").startsWith("sh: "));
                QCOMPARE(operated.Run("echo next"), QString("next\n"));
            }
        }
    }

    void OddSettings() {
        const PreparedFolder folder("a/b/base");
        const QString longest = QString(251, 'n') + ".bin";
        folder.Write(longest, "1");
        QByteArray noise(100'000'000, Qt::Uninitialized);
        QRandomGenerator(1).fillRange(reinterpret_cast<quint32*>(noise.data()), noise.size() / 4);
        const QByteArray line = "\nup," + longest.toLatin1() + ",7";
        Operated operated;
        for (const QByteArray& setting : {noise + line, line.repeated(10'000)}) {
            folder.Write("x.csv", setting);
            operated.window.SetInstallSetting(folder.Item("x.csv"));
            QCOMPARE(operated.window.ulb().ListCount(), setting.size() > noise.size() ? 1 : 10'000);
            QCOMPARE(operated.window.ulb().Cell(0, 1), "7");
        }
        // Can be opened, but not read.
        operated.window.SetInstallSetting(std::make_shared<FolderItem>("/proc/self/mem"));
        QCOMPARE(operated.window.ulb().Cell(0, 1), "0x00100000");
    }

    void PortPulledOut() {
        for (const bool running : {false, true}) {
            auto device = std::make_unique<Device>();
            const PreparedFolder folder;
            const QString wait = folder.Write("wait", "");
            const Operated operated({device->name});
            QVERIFY(operated.PressConnect());
            if (!running) device.reset();
            operated.window.InstallEF().Text("echo x; while [ -e " + wait.toStdString() +
                                             " ]; do sleep .01; done; echo y");
            operated.Click("StartPB");
            QTRY_VERIFY(operated.window.rEF().Text().ends_with("x\n"));
            device.reset();
            QFile::remove(wait);
            QCOMPARE(operated.Output(), QString("x\ny\n"));
            QVERIFY(!operated.window.mConnected && !operated.PressConnect());
        }
    }

    void TwoCopies() {
        const Device device;
        const Operated operated({device.name});
        for (const bool first : {true, false}) {
            if (first) QVERIFY(operated.PressConnect());
            QProcess second;
            second.start(QApplication::applicationFilePath(), {"--second", device.name.c_str()});
            QVERIFY(second.waitForReadyRead(20'000));
            QCOMPARE(second.readLine(), first ? "refused, ran\n" : "connected, ran\n");
            QVERIFY(operated.window.mConnected == first && !operated.PressConnect());
            QCOMPARE(operated.Run("echo x"), QString("x\n"));
            second.closeWriteChannel();
            QVERIFY(second.waitForFinished(20'000) && second.exitStatus() == QProcess::NormalExit);
            QCOMPARE(second.exitCode(), 0);
        }
        QVERIFY(operated.PressConnect());
    }

    void NoDescriptorsLeft() {
        const Device device;
        const PreparedFolder folder;
        folder.Write("i.bin", "image");
        folder.Write("x.csv", "up,i.bin,0");
        Operated operated({device.name});
        operated.window.SetInstallSetting(folder.Item("x.csv"));
        const auto full = Used().first;
        rlimit unlimited{}, limit{};
        getrlimit(RLIMIT_NOFILE, &unlimited);
        limit = {static_cast<rlim_t>(full) - 1, unlimited.rlim_max};
        for (QString output; output != "x\n"; ++limit.rlim_cur) {
            setrlimit(RLIMIT_NOFILE, &limit);
            output = operated.Run("echo x");
            if (operated.PressConnect()) operated.PressConnect();
            operated.window.SetInstallSetting(folder.Item("x.csv"));
            setrlimit(RLIMIT_NOFILE, &unlimited);
            QVERIFY(output == "x\n" || (output.startsWith("sh: ") && output.count('\n') == 1));
            QCOMPARE(operated.window.ulb().Cell(0, 1), "0");
        }
        QVERIFY(operated.PressConnect() && !operated.PressConnect());
        QCOMPARE(Used().first, full);
    }
};

int main(int count, char** arguments) {
    if (count == 3 && std::string_view(arguments[1]) == "--second") return SecondCopy(arguments[2]);
    return RunTest<FaultTest>(count, arguments);
}
#include "FaultTest.moc"
