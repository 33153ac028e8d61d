// The bridge to the official flash tool, the kit that prepares a folder, and the README's commands
// that use both. A stand-in plays the official tool and records its call.
#include <QProcess>
#include <QRegularExpression>
#include <QStandardPaths>

#include "Testing.h"

namespace {

const QString kBridge = QUILLSTONE_SOURCE "/bridge/esptool";
const QString kKit = QUILLSTONE_SOURCE "/bridge/quillstone-kit";

// Records its call, tells its process, and ends with 7.
constexpr char kOfficial[] = R"(
[ "$2" != esptool ] || shift 2
[ "$1" != version ] || { printf 'esptool v%s\n' $version; echo $version; exit; }
printf '%s\0' "$@" >~/call.new; mv ~/call.new ~/call; echo $$; exit 7)";

QByteArray Bytes(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QStringList Content(const QString& folder) {
    return QDir(folder).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
}

// A home folder and a search path of its own: "usr/bin", "later", and what the scripts need.
struct Machine : PreparedFolder {
    Machine() {
        for (const char* name : {"system", "home", "esptool", "empty"}) QDir().mkpath(Path(name));
        for (const char* name : {"cmp", "cp", "iconv", "ln", "ls", "mkdir", "mv", "readlink", "rm",
                                 "rmdir", "sed", "tail", "tr", "wc"})
            QFile::link(QStandardPaths::findExecutable(name), Path("system/") + name);
        qputenv("HOME", Path("home").toUtf8());
        qputenv("PATH", Path("usr/bin:" + Path("later:" + Path("system"))).toUtf8());
    }
    ~Machine() {
        qputenv("HOME", mHome);
        qputenv("PATH", mPath);
    }
    void Script(const QString& name, const QByteArray& text) const {
        Write(name, "#!/bin/sh -e\n" + text, 0755);
    }
    void Official(const QString& name, const QByteArray& version) const {
        Script(name, "version=" + version + kOfficial);
    }
    void Install(const QString& prefix) const {
        Write(prefix + "/bin/quillstone-kit", Bytes(kKit), 0755);
        Write(prefix + "/lib/quillstone/bridge/esptool", Bytes(kBridge), 0755);
        QFile::copy(QUILLSTONE_PROGRAM, Path(prefix) + "/lib/quillstone/quillstone");
    }
    // The arguments that the official tool got.
    QByteArrayList Call() const { return Bytes(Path("home/call")).split('\0'); }

    const QByteArray mHome = qgetenv("HOME"), mPath = qgetenv("PATH");
};

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
        const auto row = Columns<QByteArray, std::string, std::string, QByteArray, QByteArrayList>(
            "version", "port", "reset", "before", "images");
        row("the start values", "4.7.0", "p", "ck", "default_reset", {"a"});
        row("the start values, version 5", "5.0.2", "p", "ck", "default-reset", {"a"});
        row("no port, no reset", "4.7.0", "", "", "default_reset", {"a"});
        row("reset none, version 5", "5.0.2", "p", "none", "no-reset", {"a"});
        row("reset wifio, ten images", "10.0", "p", "wifio", "default-reset",
            {"0", "1", "2", "3", "4", "5", "6", "7", "8", "9"});
        row("another reset, odd names", "4.7.0", "p", "usb_reset", "usb_reset",
            {"a b", "'\"$x`*\\n", "n\nl\r", "-\xFF@\xE3\x83", "\n"});
    }
    void OfficialToolGetsTheWindowsCommand() {
        const auto [version, port, reset, before, images] =
            Row<QByteArray, std::string, std::string, QByteArray, QByteArrayList>(
                "version", "port", "reset", "before", "images");
        const Machine machine;
        machine.Official("usr/bin/esptool", version);
        QFile::link(kBridge, machine.Path("esptool/esptool"));
        if (!port.empty()) machine.Ports({port});
        QByteArrayList call;
        if (!port.empty()) call = {"--port", "/dev/p"};
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
        // By the bridge, or by the kit.
        const auto row = Columns<bool, QString, QString>("byTheBridge", "arguments", "message");
        row("no image", true, "-vv -cd ck", "no image to write");
        row("an address without a file", true, "-ca 1", "address without a file: 1");
        row("a file without an address", true, "-cf a\nb", "file without an address: a b");
        row("an empty address", true, "-ca -cf f", "no value after -ca");
        row("an unknown option", true, "-x", "unknown option: -x");
        row("a folder with something in it", false, "full", "not an empty folder: ./full");
        row("an image without an address", false, "new a.bin", "an image without an address");
        row("no number", false, "empty a.bin 010", "not a number such as 65536 or 0x10000: 010");
        row("beyond 32 bits", false, "new a.bin 4294967296", "address beyond 32 bits: 4294967296");
        row("an overlap", false, "new full/a.bin 0x10 b.bin 19", "a.bin and b.bin overlap");
        row("one name", false, "new a.bin 0 full/a.bin 99", "two images with the name a.bin");
        row("a comma", false, "new c,\r 0", "a setting file can't hold a name with a comma: c,?");
        row("a speed of no row", false, "--speed 1 new", "not a speed that the window has: 1");
        row("a command", false, "--reset a;b new", "not a word for a reset method: a;b");
    }
    void Refused() {
        const auto [byTheBridge, arguments, message] =
            Row<bool, QString, QString>("byTheBridge", "arguments", "message");
        const Machine machine;
        machine.Official("usr/bin/esptool", "4.7.0");
        for (const char* name : {"a.bin", "b.bin", "c,\r"}) machine.Write(name, "1");
        machine.Write("full/a.bin", "1234");
        const QStringList content = Content(machine.Path());
        Process process(machine, byTheBridge ? kBridge : kKit, arguments.split(' '));
        QCOMPARE(QString::fromUtf8(process.readAllStandardError()),
                 (byTheBridge ? "esptool bridge: " : "quillstone-kit: ") + message + '\n');
        QCOMPARE(process.exitCode(), 2);
        QCOMPARE(Content(machine.Path()), content);
        QCOMPARE(Content(machine.Path("empty")), QStringList());
    }

    // Past the bridge itself, as a link, a copy or another version, which comes first.
    void FindsTheOfficialTool_data() {
        // First on the search path is a link to the bridge, or this script.
        const auto row = Columns<QString, QByteArray, int>("official", "first", "messages");
        row("behind a link", "later/esptool", "", 0);
        row("under the old name, behind a copy", "later/esptool.py", Bytes(kBridge), 0);
        row("where pipx puts it", "home/.local/bin/esptool", Bytes(kBridge) + '#', 0);
        row("as a module", "later/python3", "", 0);
        row("behind a caller", "later/esptool", "#!/bin/sh\nexec '" + kBridge.toUtf8() + "' \"$@\"",
            1);
        row("nowhere", "elsewhere/esptool", "", 2);
    }
    void FindsTheOfficialTool() {
        const auto [official, first, messages] =
            Row<QString, QByteArray, int>("official", "first", "messages");
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
        const auto row = Columns<QString, QByteArray, QString>("arguments", "setting", "link");
        const QString installed = "usr/lib/quillstone/bridge/esptool";
        row("with options", "kit a.bin 0x0 --speed 921600 b'.bin 4096 --reset none a.bin 0X10000",
            "cd,none\ncb,921600\nup,a.bin,0x0\nup,b'.bin,4096\nup,a.bin,0X10000\n", installed);
        row("of images that touch", "-- kit/ -d.bin 4 a.bin 0 b'.bin 8",
            "up,-d.bin,4\nup,a.bin,0\nup,b'.bin,8\n", installed);
        row("with an own tool", "--tool tool kit", "", "tool");
        row("with the program", "--program kit/../kit/", "", "");
    }
    void KitIsMade() {
        const auto [arguments, setting, link] =
            Row<QString, QByteArray, QString>("arguments", "setting", "link");
        const Machine machine;
        for (const char* name : {"a.bin", "b'.bin", "-d.bin"}) machine.Write(name, "1234");
        machine.Write("tool", "", 0755);
        machine.Install("usr");
        const QString kit = machine.Path("kit/"), maker = machine.Path("usr/bin/quillstone-kit");
        const bool withProgram = arguments.startsWith("--program");
        if (withProgram) QDir().mkpath(kit);
        QCOMPARE(Process(machine, maker, arguments.split(' ')).exitCode(), 0);
        QCOMPARE(Content(kit).size(), withProgram ? 3 : 2);
        QCOMPARE(QFile::exists(kit + "quillstone"), withProgram);
        QCOMPARE(Bytes(kit + "bin/installsetting.csv"), setting);
        const QFileInfo tool(kit + "esptool/esptool");
        QVERIFY(tool.isExecutable());
        QCOMPARE(tool.symLinkTarget(), link.isEmpty() ? link : machine.Path(link));
    }

    void KitThatFailsLeavesNothing_data() {
        const auto row = Columns<QByteArray, int>("copy", "status");
        row("on a full disk", "exit 1", 1);
        row("at a signal", "kill -TERM $PPID", 143);
    }
    void KitThatFailsLeavesNothing() {
        const auto [copy, status] = Row<QByteArray, int>("copy", "status");
        const Machine machine;
        machine.Script("usr/bin/cp", copy);
        machine.Write("a.bin", "1");
        const QStringList content = Content(machine.Path());
        QCOMPARE(Process(machine, kKit, {"new", "a.bin", "0"}).exitCode(), status);
        QCOMPARE(Content(machine.Path()), content);
    }

    // From the README's own text. Packages come from stand-ins; what they bring is real but for the
    // official tool. In the window that the last command opens, Start is pressed.
    void FiveCommandsOfTheReadme() {
        const QString chapter = Bytes(QUILLSTONE_SOURCE "/README.md");
        const QString title = "## From a board to a flashed board in five commands\n";
        const QRegularExpression block("\n\n((?:    .*\n){5,6})\n");
        const QString commands =
            block.match(chapter.section(title, 1)).captured(1).replace("\\\n", "");
        QCOMPARE(commands.count('\n'), 5);

        const Machine machine;
        machine.Official("debian/esptool", "4.7.0");
        machine.Script("system/sudo", "exec \"$@\"");
        machine.Script("system/apt", R"([ $1 = install ]; shift; for name; do case $name in
            ./*) [ -f $name ]; mv ~/../package ~/../usr;;
            *) cp ~/../debian/$name ~/../usr/bin;; esac; done)");
        machine.Script("clone/scripts/package", "cd build/release; : >packages/quillstone_1.deb");
        QDir().mkpath(machine.Path("clone/build/release/packages"));
        machine.Install("package");
        QFile::link("../lib/quillstone/quillstone", machine.Path("package/bin/quillstone"));
        QByteArray expected = "460800 --before default_reset write_flash";
        for (const char* image : {"0x1000 bootloader", "0x8000 partitions", "0x10000 app"}) {
            const QByteArray name = QByteArray(image).split(' ')[1] + ".bin";
            machine.Write("home/board/" + name, name);
            expected += ' ' + QByteArray(image).split(' ')[0] + " firmware/bin/" + name;
        }
        qputenv("QT_PLUGIN_PATH", QUILLSTONE_PLUGINS);
        qputenv("QT_QPA_GENERIC_PLUGINS", "driver");
        qputenv("QUILLSTONE_DRIVER", "Ctrl+Return|wait " + qgetenv("HOME") + "/call|close");
        QCOMPARE(Process(machine, "/bin/sh", {"-ec", "cd clone\n" + commands}).exitCode(), 0);
        const QByteArrayList got = machine.Call();  // with a port in front if the machine has one
        const QByteArray call = got.mid(got.indexOf("--baud") + 1).join(' ');
        QCOMPARE(QByteArray(call).replace(qgetenv("HOME") + '/', "").trimmed(), expected);
        QCOMPARE(Bytes(machine.Path("home/firmware/bin/app.bin")), QByteArray("app.bin"));
    }
};

QUILLSTONE_TEST(BridgeTest)
#include "BridgeTest.moc"
