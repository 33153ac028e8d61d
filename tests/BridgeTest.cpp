// The bridge to the official flash tool, the kit that prepares a folder, and the README's commands
// that use both. A stand-in plays the official tool and records its call.
#include <QProcess>
#include <QStandardPaths>

#include "Testing.h"

namespace {

const QString kBridge = "usr/lib/quillstone/bridge/esptool", kKit = "usr/bin/quillstone-kit";

QByteArray Bytes(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

// Everything installed, a home folder, and a search path of "usr/bin", "later" and what scripts
// need.
struct Machine : PreparedFolder {
    Machine() {
        for (const char* name : {"system", "home", "empty"}) QDir().mkpath(Path(name));
        const QStringList tools = {"cmp",      "cp", "iconv", "ln",  "ls",   "mkdir", "mv",
                                   "readlink", "rm", "rmdir", "sed", "tail", "tr",    "wc"};
        for (const QString& name : tools)
            QFile::link(QStandardPaths::findExecutable(name, {"/bin", "/usr/bin"}),
                        Path("system/" + name));
        qputenv("HOME", Path("home").toUtf8());
        qputenv("PATH", Path("usr/bin:" + Path("later:" + Path("system"))).toUtf8());
        Write(kKit, Bytes(QUILLSTONE_SOURCE "/bridge/quillstone-kit"), 0755);
        Write(kBridge, Bytes(QUILLSTONE_SOURCE "/bridge/esptool"), 0755);
        QFile::copy(QUILLSTONE_PROGRAM, Path("usr/lib/quillstone/quillstone"));
    }
    void Script(const QString& name, const QByteArray& text) const {
        Write(name, "#!/bin/sh -e\n" + text, 0755);
    }
    // Records its call, and ends with 7.
    void Official(const QString& name, const QString& version = "4.7.0") const {
        Script(name, "version=" + version.toUtf8() + R"(; [ "$2" != esptool ] || shift 2
[ "$1" != version ] || { printf 'esptool v%s\n' $version; echo $version; exit; }
printf '%s\0' "$@" >~/call.new; mv ~/call.new ~/call; exit 7)");
    }
    QByteArrayList Call() const { return Bytes(Path("home/call")).split('\0'); }
    QStringList Content(const QString& folder = {}) const {
        return QDir(Path(folder)).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
    }
    // Returns the exit status.
    int Shell(const QString& command, QString* errors = nullptr) const {
        QProcess shell;
        shell.setWorkingDirectory(Path());
        shell.start("/bin/sh", {"-ec", command});
        if (!shell.waitForFinished(60'000)) qFatal("%s doesn't end", qPrintable(command));
        if (errors) *errors = shell.readAllStandardError();
        return shell.exitCode();
    }
};

}  // namespace

class BridgeTest : public QObject {
    Q_OBJECT
  private slots:
    void OfficialToolGetsTheWindowsCommand_data() {
        const auto row = Columns<QString, QString, QString, QByteArrayList>("version", "reset",
                                                                            "before", "images");
        const QByteArrayList one = {"a.bin"},
                             ten = {"a b", "'\"$x`*\\n", "n\nl\r", "-\xFF@\xE3\x83", "\n", "6", "7",
                                    "8",   "9",          "10"};
        row("the start values", "4.7.0", "ck", "default_reset", one);
        row("reset none", "4.7.0", "none", "no_reset", one);
        row("reset none, version 5", "5.0.2", "none", "no-reset", one);
        row("reset wifio, version 10", "10.0", "wifio", "default-reset", one);
        row("another reset, ten images with odd names", "4.7.0", "usb_reset", "usb_reset", ten);
    }
    void OfficialToolGetsTheWindowsCommand() {
        const auto [version, reset, before, images] =
            Row<QString, QString, QString, QByteArrayList>("version", "reset", "before", "images");
        const Machine machine;
        machine.Ports({"p"});
        machine.Official("usr/bin/esptool", version);
        machine.WriteTool("exec " + machine.Path(kBridge).toUtf8() + " \"$@\"");
        QByteArrayList call = {"--port", "/dev/p", "--baud", "115200", "--before"};
        call += {before.toUtf8(), version[0] == '4' ? "write_flash" : "write-flash"};
        OpenedWindow opened;
        for (const QByteArray& name : images) {
            const auto image = machine.Item("")->Child(name.toStdString());
            fclose(fopen(image->NativePath().c_str(), "w"));
            opened.window.SetUploadFileToList(image, std::to_string(call.size()));
            call += {QByteArray::number(call.size()), image->NativePath().c_str()};
        }
        opened.window.ResetEF().Text(reset.toStdString());
        opened.window.MakeCommand();
        opened.Click("StartPB");
        QVERIFY(opened.Output() != "hangs");
        for (const QByteArray& path : call.mid(7)) unlink(path);  // Qt can't name all of them
        QCOMPARE(machine.Call(), call << "");
    }

    // By one line, and nothing is left or changed.
    void Refused_data() {
        const auto row = Columns<QString, QString, QString>("program", "arguments", "message");
        row("no image", kBridge, " -vv -cd ck", "no image to write");
        row("an unknown option", kBridge, " -ca 1 -cf f -x", "unknown option: -x");
        row("an address without a file", kBridge, " -ca 1", "address without a file: 1");
        row("a file without an address", kBridge, " -cf 'a\nb'", "file without an address: a b");
        row("an empty address", kBridge, " -ca -cf f", "no value after -ca");
        row("a full folder", kKit, " full", "not an empty folder: ./full");
        row("no address", kKit, " new a.bin", "an image without an address");
        row("base 8", kKit, " empty a.bin 010", "not a number such as 65536 or 0x10000: 010");
        row("an overlap", kKit, " new full/a.bin 0x10 b.bin 19", "a.bin and b.bin overlap");
        row("one name", kKit, " new a.bin 0 full/a.bin 99", "two images with the name a.bin");
        row("a comma", kKit, " new c,.bin 0",
            "a setting file can't hold a name with a comma: c,.bin");
        row("a command", kKit, " --reset 'a;b' new", "not a word for a reset method: a;b");
    }
    void Refused() {
        const auto [program, arguments, message] =
            Row<QString, QString, QString>("program", "arguments", "message");
        const Machine machine;
        machine.Official("usr/bin/esptool");
        for (const char* name : {"a.bin", "b.bin", "c,.bin"}) machine.Write(name, "1");
        machine.Write("full/a.bin", "1234");
        const QStringList content = machine.Content();
        QString errors;
        QCOMPARE(machine.Shell(program + arguments, &errors), 2);
        QCOMPARE(errors.section(": ", 1), message + '\n');
        QCOMPARE(machine.Content() + machine.Content("empty"), content);
    }

    // Past the bridge itself, as a link, a copy or another version, which comes first.
    void FindsTheOfficialTool_data() {
        const auto row = Columns<QString, QString, int>("official", "first", "messages");
        const QString copy = "cp " + kBridge + " usr/bin";
        row("behind a link", "later/esptool", "ln -s ../lib/quillstone/bridge/esptool usr/bin", 0);
        row("under the old name, behind a copy", "later/esptool.py", copy, 0);
        row("of pipx", "home/.local/bin/esptool", copy + "; echo '#' >>usr/bin/esptool", 0);
        row("as a module", "later/python3", copy, 0);
        row("behind another tool", "later/esptool", "ln -s /bin/echo usr/bin/esptool", 1);
        row("nowhere", "elsewhere/esptool", copy, 2);
    }
    void FindsTheOfficialTool() {
        const auto [official, first, messages] =
            Row<QString, QString, int>("official", "first", "messages");
        const Machine machine;
        machine.Official(official);
        QString errors;
        QCOMPARE(machine.Shell(first + "; exec " + kBridge + " -ca 0 -cf -f", &errors),
                 messages == 2 ? 127 : 7);
        QCOMPARE(errors.count('\n'), messages);
        QCOMPARE(machine.Call().join(' '),
                 messages == 2 ? "" : "--before default_reset write_flash 0 ./-f ");
    }

    void KitIsMade() {
        const Machine machine;
        for (const char* name : {"a.bin", "b'.bin", "-d.bin"}) machine.Write(name, "1234");
        const QString tool = machine.Write("tool", "", 0755);
        QCOMPARE(machine.Shell(kKit + " kit/ --speed 921600 --reset none --tool tool -- -d.bin 4 "
                                      "a.bin 0 b\\'.bin 8 a.bin 0X10000"),
                 0);
        QCOMPARE(Bytes(machine.Path("kit/bin/installsetting.csv")),
                 "cd,none\ncb,921600\nup,-d.bin,4\nup,a.bin,0\nup,b'.bin,8\nup,a.bin,0X10000\n");
        QCOMPARE(Bytes(machine.Path("kit/bin/a.bin")), "1234");
        QCOMPARE(QFile::symLinkTarget(machine.Path("kit/esptool/esptool")), tool);
        QCOMPARE(machine.Shell(kKit + " --program empty/../empty/"), 0);
        QCOMPARE(machine.Content("empty"), QStringList({"bin", "esptool", "quillstone"}));
        const QFileInfo copy(machine.Path("empty/esptool/esptool"));
        QVERIFY(copy.isExecutable() && !copy.isSymLink());
    }

    void KitThatFailsLeavesNothing_data() {
        const auto row = Columns<QByteArray>("copy");
        row("on a full disk", QByteArray("exit 1"));
        row("at a signal", QByteArray("kill -TERM $PPID"));
    }
    void KitThatFailsLeavesNothing() {
        QFETCH(QByteArray, copy);
        const Machine machine;
        machine.Script("usr/bin/cp", copy);
        machine.Write("a.bin", "1");
        const QStringList content = machine.Content();
        QVERIFY(machine.Shell(kKit + " new a.bin 0") != 0);
        QCOMPARE(machine.Content(), content);
    }

    // From the README's own text. Its packages come from stand-ins. In the window that the last
    // command opens, Start is pressed.
    void FiveCommandsOfTheReadme_data() {
        const auto row = Columns<int, QString>("block", "options");
        row("Debian 13", 1, "default_reset write_flash");
        row("Debian 12", 2, "default-reset write-flash");
    }
    void FiveCommandsOfTheReadme() {
        const auto [block, options] = Row<int, QString>("block", "options");
        const QString readme = Bytes(QUILLSTONE_SOURCE "/README.md"),
                      chapter = readme.section("in five commands\n", 1);
        const QString commands = chapter.section("\n\n    ", block, block).section("\n\n", 0, 0);
        QCOMPARE(QString(commands).remove("\\\n").count('\n'), 4);
        const Machine machine;
        machine.Official("debian/esptool");
        machine.Official("pypi/esptool", "5.0.2");
        machine.Script("debian/pipx", "mkdir -p ~/.local/bin; cp ~/../pypi/$2 ~/.local/bin");
        machine.Script("system/sudo", "exec \"$@\"");
        machine.Script("system/apt", "[ -f $2 ]; cp ~/../debian/$3 ~/../usr/bin");
        machine.Script(
            "clone/scripts/package",
            "mkdir -p build/release/packages; : >build/release/packages/quillstone_1.deb");
        machine.Shell("ln -s ../lib/quillstone/quillstone usr/bin");
        for (const char* name : {"bootloader", "partitions", "app"})
            machine.Write(QString("home/board/%1.bin").arg(name), "");
        qputenv("QT_PLUGIN_PATH", QUILLSTONE_PLUGINS);
        qputenv("QT_QPA_GENERIC_PLUGINS", "driver");
        qputenv("QUILLSTONE_DRIVER", "Ctrl+Return|wait " + qgetenv("HOME") + "/call|close");
        QCOMPARE(machine.Shell("cd clone\n" + commands), 0);
        const QString call = machine.Call().join(' ').replace(qgetenv("HOME"), "~");
        QCOMPARE(call.mid(call.indexOf("--baud")),  // behind a port if the machine has one
                 "--baud 460800 --before " + options +
                     " 0x1000 ~/firmware/bin/bootloader.bin 0x8000 ~/firmware/bin/partitions.bin "
                     "0x10000 ~/firmware/bin/app.bin ");
    }
};

QUILLSTONE_TEST(BridgeTest)
#include "BridgeTest.moc"
