// The bridge to the official flash tool, the kit that prepares a folder, and the README's commands
// that use both. A stand-in plays the official tool and records its call.
#include <QProcess>
#include <QRegularExpression>

#include "Machine.h"

namespace {

const QString kBridge = QUILLSTONE_SOURCE "/bridge/esptool";
const QString kKit = QUILLSTONE_SOURCE "/bridge/quillstone-kit";

void InstallScripts(const Machine& machine, const QString& prefix) {
    machine.Write(prefix + "/bin/quillstone-kit", Bytes(kKit), 0755);
    machine.Write(prefix + "/lib/quillstone/bridge/esptool", Bytes(kBridge), 0755);
}

struct Process : QProcess {
    Process(const Machine& machine, const QString& program, const QStringList& arguments) {
        setWorkingDirectory(machine.Path());
        start(program, arguments);
        pid = processId();
        if (!waitForFinished(60'000)) qFatal("%s doesn't end", qPrintable(program));
    }
    qint64 pid = 0;
};

}  // namespace

class BridgeTest : public QObject {
    Q_OBJECT
  private slots:
    void OfficialToolGetsTheWindowsCommand_data() {
        QTest::addColumn<QByteArray>("version");
        QTest::addColumn<std::string>("port");
        QTest::addColumn<std::string>("reset");
        QTest::addColumn<QByteArray>("before");
        QTest::addColumn<QByteArrayList>("images");
        const auto row = [](const char* name, const char* version, const char* port,
                            const char* reset, const char* before,
                            const QByteArrayList& images = {"a.bin"}) {
            QTest::newRow(name) << QByteArray(version) << std::string(port) << std::string(reset)
                                << QByteArray(before) << images;
        };
        row("the start values", "4.7.0", "p", "ck", "default_reset");
        row("the start values, version 5", "5.0.2", "p", "ck", "default-reset");
        row("no port, no reset", "4.7.0", "", "", "default_reset");
        row("reset none", "4.7.0", "p", "none", "no_reset");
        row("reset none, version 5", "5.0.2", "p", "none", "no-reset");
        row("reset wifio, ten images", "10.0", "p", "wifio", "default-reset",
            {"0", "1", "2", "3", "4", "5", "6", "7", "8", "9"});
        row("another reset, odd names", "4.7.0", "p", "usb_reset", "usb_reset",
            {"a b", "'\"$x`*\\n", "n\nl\r", "-\xFF@\xE3\x83", "\n"});
    }
    void OfficialToolGetsTheWindowsCommand() {
        QFETCH(QByteArray, version);
        QFETCH(std::string, port);
        QFETCH(std::string, reset);
        QFETCH(QByteArray, before);
        QFETCH(QByteArrayList, images);
        const Machine machine;
        machine.Official("usr/bin/esptool", version);
        QDir().mkpath(machine.Path("esptool"));
        QFile::link(kBridge, machine.Path("esptool/esptool"));
        QByteArrayList call;
        if (!port.empty()) {
            machine.Ports({port});
            call = {"--port", "/dev/p"};
        }
        call += {"--baud", "115200", "--before", before};
        call += version.startsWith('4') ? "write_flash" : "write-flash";
        OpenedWindow opened;
        for (const QByteArray& name : images) {
            const QByteArray image = machine.Path().toUtf8() + '/' + name;
            fclose(fopen(image, "w"));
            call += {QByteArray::number(call.size()), image};
            opened.window.SetUploadFileToList(std::make_shared<FolderItem>(image.toStdString()),
                                              call[call.size() - 2].toStdString());
        }
        opened.window.ResetEF().Text(reset);
        opened.window.MakeCommand();
        opened.Click("StartPB");
        QVERIFY(opened.Output() != "hangs");
        for (const QByteArray& name : images)  // not every way of removing the folder can name it
            remove(machine.Path().toUtf8() + '/' + name);
        QCOMPARE(machine.Call(), call << QByteArray());
    }

    // By one line, and nothing is left or changed.
    void Refused_data() {
        QTest::addColumn<QString>("program");
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<QString>("message");
        const auto row = [](const char* name, const QString& arguments, const char* message) {
            const bool isBridge = arguments.startsWith('-') && !arguments.contains("new");
            QTest::newRow(name) << (isBridge ? kBridge : kKit) << arguments.split(' ')
                                << (isBridge ? "esptool bridge: " : "quillstone-kit: ") +
                                       QString(message);
        };
        row("no image", "-vv -cd ck", "no image to write");
        row("an address without a file", "-ca 1", "address without a file: 1");
        row("a file without an address", "-cf a\nb", "file without an address: a b");
        row("an empty address", "-ca -cf f", "no value after -ca");
        row("no file", "-ca 1 -cf", "no value after -cf");
        row("a folder with something in it", "full", "not an empty folder: ./full");
        row("an image without an address", "new a.bin", "an image without an address");
        row("no number", "empty a.bin 1g", "not a number such as 65536 or 0x10000: 1g");
        row("base 8", "new a.bin 010", "not a number such as 65536 or 0x10000: 010");
        row("beyond 32 bits", "new a.bin 4294967296", "address beyond 32 bits: 4294967296");
        row("an overlap", "new full/a.bin 0x10 b.bin 19", "a.bin and b.bin overlap");
        row("one name", "new a.bin 0 full/a.bin 99", "two images with the name a.bin");
        row("a comma", "new a.bin 1 c,.bin 0",
            "a setting file can't hold a name with a comma: c,.bin");
        row("a line end", "new d\r.bin 0",
            "a setting file can't hold a name with a line end: d?.bin");
        row("a speed that the window lacks", "--speed 1 new", "not a speed that the window has: 1");
        row("a command as reset", "--reset a;b new", "not a word for a reset method: a;b");
    }
    void Refused() {
        QFETCH(QString, program);
        QFETCH(QStringList, arguments);
        QFETCH(QString, message);
        const Machine machine;
        machine.Official("usr/bin/esptool", "4.7.0");
        for (const char* name : {"a.bin", "b.bin", "c,.bin", "d\r.bin"}) machine.Write(name, "1");
        machine.Write("full/a.bin", "1234");
        QDir().mkpath(machine.Path("empty"));
        const QStringList content = Content(machine.Path());
        Process process(machine, program, arguments);
        QCOMPARE(QString::fromUtf8(process.readAllStandardError()), message + '\n');
        QCOMPARE(process.exitCode(), 2);
        QCOMPARE(Content(machine.Path()), content);
        QCOMPARE(Content(machine.Path("empty")), QStringList());
    }

    // Past the bridge itself, as a link, a copy or another version, which comes first.
    void FindsTheOfficialTool_data() {
        QTest::addColumn<QString>("official");
        QTest::addColumn<QByteArray>("first");  // a link to the bridge if empty
        QTest::addColumn<int>("messages");
        const auto row = [](const char* name, const QString& official, const QByteArray& first,
                            int messages = 0) {
            QTest::newRow(name) << official << first << messages;
        };
        row("behind a link", "later/esptool", "");
        row("under the old name, behind a copy", "later/esptool.py", Bytes(kBridge));
        row("where pipx puts it", "home/.local/bin/esptool", Bytes(kBridge) + "#");
        row("as a module", "later/python3", "");
        row("behind a caller of the bridge", "later/esptool",
            "#!/bin/sh\nexec '" + kBridge.toUtf8() + "' \"$@\"", 1);
        row("behind another tool", "later/esptool", "#!/bin/sh\necho esptool v0.4.9", 1);
        row("nowhere", "elsewhere/esptool", "", 2);
    }
    void FindsTheOfficialTool() {
        QFETCH(QString, official);
        QFETCH(QByteArray, first);
        QFETCH(int, messages);
        const Machine machine;
        machine.Official(official, "4.7.0");
        machine.Write("usr/bin/esptool", first, 0755);
        if (first.isEmpty()) QFile::remove(machine.Path("usr/bin/esptool"));
        if (first.isEmpty()) QFile::link(kBridge, machine.Path("usr/bin/esptool"));
        Process bridge(machine, kBridge, {"-ca", "0", "-cf", "-f"});
        QCOMPARE(bridge.readAllStandardError().count('\n'), messages);
        QCOMPARE(bridge.exitCode(), messages == 2 ? 127 : 7);
        if (messages == 2) return;
        QCOMPARE(machine.Call()[4], QByteArray("./-f"));
        QCOMPARE(bridge.readAllStandardOutput().trimmed().toLongLong(), bridge.pid);
    }

    // By the installed kit.
    void KitIsMade_data() {
        QTest::addColumn<QString>("arguments");
        QTest::addColumn<QByteArray>("setting");
        QTest::addColumn<QString>("link");
        const auto row = [](const char* name, const QString& arguments, const QByteArray& setting,
                            const QString& link) {
            QTest::newRow(name) << arguments << setting << link;
        };
        row("with options", "kit a.bin 0x0 --speed 921600 b'.bin 4096 --reset none a.bin 0X10000",
            "cd,none\ncb,921600\nup,a.bin,0x0\nup,b'.bin,4096\nup,a.bin,0X10000\n",
            "usr/lib/quillstone/bridge/esptool");
        row("of images that touch", "-- kit/ -d.bin 4 a.bin 0 b'.bin 8",
            "up,-d.bin,4\nup,a.bin,0\nup,b'.bin,8\n", "usr/lib/quillstone/bridge/esptool");
        row("with an own tool", "--tool tool kit", "", "tool");
        row("with a copy of the tool", "--copy kit", "", "");
        row("with the program, in a folder that is there", "--program empty/../empty/", "", "");
    }
    void KitIsMade() {
        QFETCH(QString, arguments);
        QFETCH(QByteArray, setting);
        QFETCH(QString, link);
        const Machine machine;
        for (const char* name : {"a.bin", "b'.bin", "-d.bin"}) machine.Write(name, "1234");
        machine.Write("tool", "", 0755);
        QDir().mkpath(machine.Path("empty"));
        InstallScripts(machine, "usr");
        machine.Write("usr/lib/quillstone/quillstone", "", 0755);
        const QString kit = machine.Path("usr/bin/quillstone-kit");
        QCOMPARE(Process(machine, kit, arguments.split(' ')).exitCode(), 0);
        const bool isEmpty = arguments.contains("empty");
        const QString folder = machine.Path(isEmpty ? "empty/" : "kit/");
        QStringList content = {"bin", "esptool"};
        if (isEmpty) content += "quillstone";
        QCOMPARE(Content(folder), content);
        QCOMPARE(Bytes(folder + "bin/installsetting.csv"), setting);
        const QFileInfo tool(folder + "esptool/esptool");
        QVERIFY(tool.isExecutable());
        QCOMPARE(tool.symLinkTarget(), link.isEmpty() ? link : machine.Path(link));
    }

    void KitThatFailsLeavesNothing_data() {
        QTest::addColumn<QByteArray>("copy");
        QTest::addColumn<int>("status");
        QTest::newRow("on a full disk") << QByteArray("exit 1") << 1;
        QTest::newRow("at a signal") << QByteArray("kill -TERM $PPID") << 143;
    }
    void KitThatFailsLeavesNothing() {
        QFETCH(QByteArray, copy);
        QFETCH(int, status);
        const Machine machine;
        machine.Script("usr/bin/cp", copy);
        machine.Write("a.bin", "1");
        const QStringList content = Content(machine.Path());
        QCOMPARE(Process(machine, kKit, {"new", "a.bin", "0"}).exitCode(), status);
        QCOMPARE(Content(machine.Path()), content);
    }

    // From the README's own text. Packages come from stand-ins; what they bring is real but for the
    // official tool. In the window that the last command opens, Start is pressed.
    void FiveCommandsOfTheReadme_data() {
        QTest::addColumn<int>("block");
        QTest::addColumn<QByteArrayList>("call");
        QTest::newRow("Debian 13") << 0 << QByteArrayList{"default_reset", "write_flash"};
        QTest::newRow("Debian 12") << 1 << QByteArrayList{"default-reset", "write-flash"};
    }
    void FiveCommandsOfTheReadme() {
        QFETCH(int, block);
        QFETCH(QByteArrayList, call);
        const QString chapter = Bytes(QUILLSTONE_SOURCE "/README.md");
        const QString title = "## From a board to a flashed board in five commands\n";
        const QRegularExpression blocks("\n\n((?:    .*\n){5,6})\n");
        auto match = blocks.globalMatch(chapter.section(title, 1).section("\n## ", 0, 0));
        for (int i = 0; i < block; ++i) match.next();
        const QString commands = match.next().captured(1).replace("\\\n", "");
        QCOMPARE(commands.count('\n'), 5);

        const Machine machine;
        const QByteArray root = machine.Path().toUtf8();
        machine.Official("debian/esptool", "4.7.0");
        machine.Official("pypi/esptool", "5.0.2");
        machine.Script("debian/pipx",
                       "[ $1 = install ]; mkdir -p ~/.local/bin\n"
                       "cp ~/../pypi/$2 ~/.local/bin");
        machine.Script("system/sudo", "exec \"$@\"");
        machine.Script("system/apt", R"([ $1 = install ]; shift; for name; do case $name in
            ./*) [ -f $name ]; mv ~/../package ~/../usr;;
            *) cp ~/../debian/$name ~/../usr/bin;; esac; done)");
        machine.Script("clone/scripts/package", "cd build/release; : >packages/quillstone_1.deb");
        QDir().mkpath(machine.Path("clone/build/release/packages"));
        InstallScripts(machine, "package");
        QFile::copy(QUILLSTONE_PROGRAM, machine.Path("package/lib/quillstone/quillstone"));
        QFile::link("../lib/quillstone/quillstone", machine.Path("package/bin/quillstone"));
        const QByteArrayList images = {"bootloader.bin", "0x1000",  "partitions.bin",
                                       "0x8000",         "app.bin", "0x10000"};
        for (int i = 0; i < 6; i += 2) machine.Write("home/board/" + images[i], images[i]);
        qputenv("QT_PLUGIN_PATH", QUILLSTONE_PLUGINS);
        qputenv("QT_QPA_GENERIC_PLUGINS", "driver");
        qputenv("QUILLSTONE_DRIVER", "Ctrl+Return|wait " + root + "/home/call|close");
        const Process shell(machine, "/bin/sh", {"-ec", "cd clone\n" + commands});
        QCOMPARE(shell.exitCode(), 0);
        call = QByteArrayList{"460800", "--before"} + call;
        for (int i = 0; i < 6; i += 2) {
            call += {images[i + 1], root + "/home/firmware/bin/" + images[i]};
            QCOMPARE(Bytes(call.last()), images[i]);
        }
        const QByteArrayList got = machine.Call();  // with a port in front if the machine has one
        QCOMPARE(got.mid(got.indexOf("--baud") + 1), call << QByteArray());
    }
};

QUILLSTONE_TEST(BridgeTest)
#include "BridgeTest.moc"
