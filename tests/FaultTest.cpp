// Faults around the program, and what remains after a thousand jobs. README.md lists all faults,
// also those that other files test.
#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>

#include <QRandomGenerator>
#include <filesystem>
#include <fstream>

#include "Device.h"
#include "Testing.h"

namespace {

// Counts open descriptors, and pages in memory.
std::pair<std::ptrdiff_t, std::ptrdiff_t> Used() {
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    std::ptrdiff_t pages = 0;
    std::ifstream("/proc/self/statm") >> pages >> pages;  // the second figure
    return {std::distance(std::filesystem::directory_iterator("/dev/fd"), {}), pages};
}

}  // namespace

class FaultTest : public QObject {
    Q_OBJECT
  private slots:
    // This test runs first: in a heap that other tests have enlarged, a leak would not show.
    void ThousandTimes() {
        const Device device;
        const PreparedFolder folder;
        folder.Ports({device.name});
        const OpenedWindow opened;
        QVERIFY(opened.PressConnect());
        auto afterTen = Used();
#ifdef __SANITIZE_ADDRESS__  // it keeps what has been freed, and finds a leak at its first time
        constexpr int kTimes = 100;
#else
        constexpr int kTimes = 1000;
#endif
        for (int i = 0; i < kTimes; ++i) {
            QCOMPARE(write(device.fd, "boot\r\n", 6), 6);
            QVERIFY(opened.Run("echo x") == "x\n" && opened.window.mConnected);
            if (i == 9) afterTen = Used();
        }
        // Fewer, since Qt may close those of its idle threads; the last run's may be open a moment
        // longer.
        QTRY_VERIFY(Used().first <= afterTen.first);
        QVERIFY(kTimes < 1000 || Used().second - afterTen.second < 64);
    }

    // Faults of the loaded job, before Start or while its tool waits, and the run's output. @ is
    // the base folder.
    void FilesGo_data() {
        const auto add = Columns<QString, bool, QString>("fault", "running", "output");
        const auto row = [add](QByteArray what, QString fault, QString before, QString running) {
            add(what + " before Start", fault, false, before);
            add(what + " during the run", fault, true, running);
        };
        const char *done = "begun\nended\n", *noImage = ".*i.bin: No such file.*ended\n";
        row("image deleted", "rm @/bin/i.bin", noImage, noImage);
        row("setting file deleted", "rm @/bin/installsetting.csv", done, done);
        row("tool deleted", "rm @/esptool/esptool", ".*not found\n", done);
        row("tool not executable", "chmod a-x @/esptool/esptool", ".*denied\n", done);
        row("base folder deleted", "mv @ @.gone; rm -r @.gone", ".*not found\n",
            ".*cannot create.*ended\n");
    }
    void FilesGo() {
        const auto [fault, running, output] =
            Row<QString, bool, QString>("fault", "running", "output");
        const PreparedFolder folder("a/b/base");
        folder.WriteTool(
            "echo begun; while [ -e \"$0.wait\" ]; do sleep .01; done; for f; do :; done\n"
            "cat \"$f\" >\"${0%/*/*}/flash\"; echo ended; exit\n");
        folder.Write("bin/installsetting.csv", "up,i.bin,0");
        folder.Write("bin/i.bin", "image");
        const OpenedWindow opened;
        if (running) {
            folder.Write("esptool/esptool.wait", "");
            opened.Click("StartPB");
            QTRY_COMPARE(opened.Shown(), "begun\n");
        }
        QCOMPARE(system(qPrintable(QString(fault).replace("@", folder.Path()))), 0);
        QFile::remove(folder.Path("esptool/esptool.wait"));
        if (!running) opened.Click("StartPB");
        const QString shown = opened.Output();
        QVERIFY2(Matches(shown, output), qPrintable(shown));
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
        const auto row = Columns<QByteArray, int>("setting", "rows");
        row("16 MB of noise and a line", noise + '\n' + line, 1);
        row("an address of 10 MB", line.chopped(1) + QByteArray(10'000'000, 'x'), 1);
        row("a name of 200,000 accents, and a line",
            "up," + QByteArray("\xCC\x81\xCC\x96").repeated(100'000) + '\n' + line, 1);
        row("10,000 lines", line.repeated(10'000), 10'000);
        row("can be opened, but not read", "", 0);
    }
    void OddSettings() {
        const auto [setting, rows] = Row<QByteArray, int>("setting", "rows");
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
        const std::string command = opened.window.InstallEF().Text();
        QCOMPARE(command.find("-ca " + address + " -cf ") != command.npos, rows > 0);
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

QUILLSTONE_TEST(FaultTest)
#include "FaultTest.moc"
