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
        System().PortNames = [port] { return std::vector<std::string>{port}; };
        const OpenedWindow copy;
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
    void ThousandTimes_data() {
        QTest::addColumn<bool>("runs");
        QTest::newRow("a connect and a disconnect") << false;
        QTest::newRow("a run, connected before and after") << true;
    }
    void ThousandTimes() {
        QFETCH(const bool, runs);
        const Device device;
        const PreparedFolder folder;
        folder.Ports({device.name});
        const OpenedWindow opened;
        if (runs) QVERIFY(opened.PressConnect());
        auto afterTen = Used();
        for (int i = 0; i < 1000; ++i) {
            QCOMPARE(write(device.fd, "boot\r\n", 6), 6);
            if (runs)
                QCOMPARE(opened.Run("echo x"), "x\n");
            else
                QVERIFY(opened.PressConnect());
            QVERIFY(runs ? opened.window.mConnected : !opened.PressConnect());
            if (i == 9) afterTen = Used();
        }
        const auto [files, pages] = Used();
        qInfo("descriptors %td, then %td; pages %td, then %td", afterTen.first, files,
              afterTen.second, pages);
        QVERIFY(files <=
                afterTen.first);  // Qt closes those of its idle threads after half a minute
#ifndef __SANITIZE_ADDRESS__      // which keeps what has been freed
        QVERIFY(pages - afterTen.second < 64);
#endif
    }

    // What goes wrong with the loaded job before Start, or while its tool waits, and what the user
    // then reads. @ is the base folder.
    void FilesGo_data() {
        QTest::addColumn<QString>("fault");
        QTest::addColumn<bool>("running");
        QTest::addColumn<QString>("output");
        const auto row = [](const char* what, const char* fault, const char* before,
                            const char* running) {
            QTest::addRow("%s before Start", what) << QString(fault) << false << QString(before);
            QTest::addRow("%s during the run", what) << QString(fault) << true << QString(running);
        };
        const char *done = "begun\nended\n", *noImage = ".*i.bin: No such file.*ended\n",
                   *full = ".*No space left.*ended\n", *error = ".*i.bin.*rror\nended\n";
        row("image deleted", "rm @/bin/i.bin", noImage, noImage);
        row("image unreadable", "ln -sf /proc/self/mem @/bin/i.bin", error, error);
        row("setting file deleted", "rm @/bin/installsetting.csv", done, done);
        row("tool deleted", "rm @/esptool/esptool", ".*not found\n", done);
        row("a folder in the tool's place", "rm @/esptool/esptool; mkdir @/esptool/esptool",
            ".*denied\n", done);
        row("tool not executable", "chmod a-x @/esptool/esptool", ".*denied\n", done);
        row("tool replaced", "echo echo new >@/n; chmod +x @/n; mv @/n @/esptool/esptool", "new\n",
            done);
        row("base folder deleted", "mv @ @.gone; rm -r @.gone", ".*not found\n",
            ".*cannot create.*ended\n");
        row("disk full", "ln -s /dev/full @/flash", full, full);
    }
    void FilesGo() {
        QFETCH(QString, fault);
        QFETCH(const bool, running);
        QFETCH(const QString, output);
        const PreparedFolder folder("a/b/base");
        const QString wait = folder.WriteTool(
                                 "echo begun; while [ -e \"$0.wait\" ]; do sleep .01; "
                                 "done; for f; do :; done\n"
                                 "cat \"$f\" >\"${0%/*/*}/flash\"; echo ended; exit\n") +
                             ".wait";
        folder.Write("bin/installsetting.csv", "up,i.bin,0");
        folder.Write("bin/i.bin", "image");
        const OpenedWindow opened;
        if (running) {
            folder.Write("esptool/esptool.wait", "");
            opened.Click("StartPB");
            QTRY_VERIFY(opened.window.rEF().Text().ends_with("begun\n"));
        }
        QCOMPARE(system(qPrintable(fault.replace("@", folder.Path()))), 0);
        QFile::remove(wait);
        if (!running) opened.Click("StartPB");
        const QString shown = opened.Output();
        const QRegularExpression whole(QRegularExpression::anchoredPattern(output),
                                       QRegularExpression::DotMatchesEverythingOption);
        QVERIFY2(whole.match(shown).hasMatch(), qPrintable(shown));
        // The list is as it was, and the user goes on.
        QVERIFY(opened.window.ulb().Cell(0, 0).starts_with("i.bin ("));
        QTest::keyClicks(opened.Widget<QWidget>("ResetEF"), "x");
        const std::string command = opened.window.InstallEF().Text();
        QVERIFY(command.find("esptool -vv -cd ckx ") != std::string::npos);
        QCOMPARE(command.ends_with("i.bin"), QFile::exists(folder.Path("bin/i.bin")));
        QVERIFY(opened.Run("echo \"").startsWith("sh: "));
        QCOMPARE(opened.Run("echo next"), "next\n");
    }

    void OddSettings_data() {
        const QByteArray line = "up," + QByteArray(251, 'n') + ".bin,7\n";
        QByteArray noise(16'000'000, Qt::Uninitialized);
        QRandomGenerator(1).fillRange(reinterpret_cast<quint32*>(noise.data()), noise.size() / 4);
        QTest::addColumn<QByteArray>("setting");
        QTest::addColumn<int>("rows");
        QTest::newRow("16 MB of noise and a line") << noise + '\n' + line << 1;
        QTest::newRow("an address of 10 MB") << line.chopped(1) + QByteArray(10'000'000, 'x') << 1;
        QTest::newRow("10,000 lines") << line.repeated(10'000) << 10'000;
        QTest::newRow("larger than the limit") << line + noise + noise << 0;
        QTest::newRow("can be opened, but not read") << QByteArray() << 0;
    }
    void OddSettings() {
        QFETCH(const QByteArray, setting);
        QFETCH(const int, rows);
        const PreparedFolder folder;
        folder.Write(QString(251, 'n') + ".bin", "1");
        folder.Write("x.csv", setting);
        OpenedWindow opened;
        opened.window.ulb().Cell(0, 1, "former");
        opened.window.SetInstallSetting(setting.isEmpty()
                                            ? std::make_shared<FolderItem>("/proc/self/mem")
                                            : folder.Item("x.csv"));
        QCOMPARE(opened.window.ulb().ListCount(), std::max(rows, 1));
        const std::string address = opened.window.ulb().Cell(0, 1);
        QVERIFY(rows == 0 ? address == "former" : address.starts_with('7'));
        QCoreApplication::processEvents();  // all of it is shown
    }

    void PortPulledOut_data() {
        QTest::addColumn<bool>("running");
        QTest::newRow("before Start") << false;
        QTest::newRow("during the run") << true;
    }
    void PortPulledOut() {
        QFETCH(const bool, running);
        auto device = std::make_unique<Device>();
        const PreparedFolder folder;
        folder.Ports({device->name});
        const QString wait = folder.Write("wait", "");
        const OpenedWindow opened;
        QVERIFY(opened.PressConnect());
        if (!running) device.reset();
        opened.window.InstallEF().Text("echo x; while [ -e " + wait.toStdString() +
                                       " ]; do sleep .01; done; echo y");
        opened.Click("StartPB");
        QTRY_VERIFY(opened.window.rEF().Text().ends_with("x\n"));
        device.reset();
        QFile::remove(wait);
        QCOMPARE(opened.Output(), "x\ny\n");
        QVERIFY(!opened.window.mConnected && !opened.PressConnect());
    }

    void TwoCopies_data() {
        QTest::addColumn<bool>("firstIsConnected");
        QTest::newRow("the first has the port") << true;
        QTest::newRow("the second has the port") << false;
    }
    void TwoCopies() {
        QFETCH(const bool, firstIsConnected);
        const Device device;
        const PreparedFolder folder;
        folder.Ports({device.name});
        const OpenedWindow opened;
        if (firstIsConnected) QVERIFY(opened.PressConnect());
        QProcess second;
        second.start(QApplication::applicationFilePath(), {"--second", device.name.c_str()});
        QVERIFY(second.waitForReadyRead(20'000));
        QCOMPARE(second.readLine(), firstIsConnected ? "refused, ran\n" : "connected, ran\n");
        QVERIFY(opened.window.mConnected == firstIsConnected && !opened.PressConnect());
        QCOMPARE(opened.Run("echo x"), "x\n");
        second.closeWriteChannel();
        QVERIFY(second.waitForFinished(20'000) && second.exitStatus() == QProcess::NormalExit);
        QCOMPARE(second.exitCode(), 0);
        QVERIFY(opened.PressConnect());
    }

    void NoDescriptorsLeft() {
        const Device device;
        const PreparedFolder folder;
        folder.Ports({device.name});
        folder.Write("i.bin", "image");
        folder.Write("x.csv", "up,i.bin,0");
        OpenedWindow opened;
        opened.window.SetInstallSetting(folder.Item("x.csv"));
        const auto full = Used().first;
        rlimit unlimited{}, limit{};
        getrlimit(RLIMIT_NOFILE, &unlimited);
        limit = {static_cast<rlim_t>(full) - 1, unlimited.rlim_max};
        for (QString output; output != "x\n"; ++limit.rlim_cur) {
            setrlimit(RLIMIT_NOFILE, &limit);
            output = opened.Run("echo x");
            if (opened.PressConnect()) opened.PressConnect();
            opened.window.SetInstallSetting(folder.Item("x.csv"));
            setrlimit(RLIMIT_NOFILE, &unlimited);
            QVERIFY(output == "x\n" || (output.startsWith("sh: ") && output.count('\n') == 1));
            QCOMPARE(opened.window.ulb().Cell(0, 1), "0");
        }
        QVERIFY(opened.PressConnect() && !opened.PressConnect());
        QCOMPARE(Used().first, full);
    }
};

int main(int count, char** arguments) {
    if (count == 3 && std::string_view(arguments[1]) == "--second") return SecondCopy(arguments[2]);
    return RunTest<FaultTest>(count, arguments);
}
#include "FaultTest.moc"
