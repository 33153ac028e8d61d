// The kit as it is installed: what it makes, what it refuses, what a fault leaves, and the README's
// commands from a build to the official tool's call.
#include <signal.h>
#include <sys/ptrace.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QDirIterator>
#include <QProcess>
#include <QStandardPaths>
#include <climits>

#include "Testing.h"
#include "kit/Folder.h"

namespace {

using Files = QMap<QString, QByteArray>;

// Records its arguments, and the bytes of those that are files.
constexpr char kOfficialTool[] = R"sh(#!/bin/sh
case "$*" in *version) echo esptool v%1; echo %1; exit ;; esac
for a; do [ ! -f "$a" ] || a="${a##*/}=$(cat "$a")"; printf '%s ' "$a"; done >~/new
mv ~/new ~/call)sh";

// An installed Quillstone, and a home folder with a few images.
class Machine {
  public:
    Machine() {
        for (const char* folder : {"../usr/bin", "../usr/system", "empty"})
            QDir().mkpath(mRoot.filePath("home/") + folder);
        for (const char* tool : {"cat", "mv", "sed", "sh", "tail", "tr"})
            QFile::link(QStandardPaths::findExecutable(tool), Path("../usr/system/") + tool);
        QFile::copy(QUILLSTONE_KIT, Path("../usr/bin/quillstone-kit"));
        QFile::link("../lib/quillstone/quillstone", Path("../usr/bin/quillstone"));
        const QString installed = "../usr/lib/quillstone/";
        Write({{installed + "bridge/esptool", Read(QUILLSTONE_SOURCES "/bridge/esptool")},
               {"tool", "#!/bin/sh"},
               {"a.bin", "a.bin"},
               {"b'.bin", "b'.bin"},
               {"-d.bin", "-d.bin"}});
        QFile::copy(QUILLSTONE_PROGRAM, Path(installed) + "quillstone");
    }

    QString Home() const { return QDir(mRoot.filePath("home")).canonicalPath(); }
    QString Path(const QString& relative) const { return Home() + '/' + relative; }
    static QByteArray Read(const QString& path) {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("none");
    }
    // In the bytes ROOT stands for the home folder. A script can be executed.
    void Write(const Files& files) const {
        for (auto file = files.begin(); file != files.end(); ++file) {
            QDir().mkpath(QFileInfo(Path(file.key())).path());
            QFile out(Path(file.key()));
            if (!out.open(QIODevice::WriteOnly)) qFatal("can't write %s", qPrintable(file.key()));
            out.write(QByteArray(*file).replace("ROOT", Home().toUtf8()));
            if (file->startsWith("#!")) out.setPermissions(QFile::Permissions(0x7755));
        }
    }
    // All entries of a folder, with the bytes of files and where links lead.
    Files Tree(const QString& folder = {}) const {
        constexpr auto kAll = QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden | QDir::System;
        Files tree;
        for (QDirIterator at(Path(folder), kAll, QDirIterator::Subdirectories); at.hasNext();) {
            const QFileInfo entry(at.next());
            tree[QDir(Path(folder)).relativeFilePath(entry.filePath())] =
                entry.isSymLink() ? "-> " + QFile::symLinkTarget(entry.filePath()).toUtf8()
                : entry.isDir()   ? "/"
                                  : Read(entry.filePath());
        }
        return tree;
    }

    // Runs commands in a shell. Returns their status and the text of their errors.
    QPair<int, QByteArray> Run(const QString& commands,
                               const std::function<void()>& inChild = {}) const {
        QProcess process;
        auto environment = QProcessEnvironment::systemEnvironment();
        environment.insert("HOME", Home());
        environment.insert("PATH", Path("../usr/bin") + ":" + Path("../usr/system"));
        environment.insert("QT_PLUGIN_PATH", QUILLSTONE_PLUGINS);
        environment.insert("QT_QPA_GENERIC_PLUGINS", "driver");
        environment.insert("QUILLSTONE_DRIVER",
                           "Ctrl+Return|wait " + Path("call") + "|print output|close");
        process.setProcessEnvironment(environment);
        process.setWorkingDirectory(Home());
        process.setStandardOutputFile(QProcess::nullDevice());
        if (inChild) process.setChildProcessModifier(inChild);
        process.start("/bin/sh", {"-ec", commands});
        if (!process.waitForFinished(60'000)) return {-1, "hangs"};
        return {process.exitCode(), process.readAllStandardError()};
    }
    // Runs commands that end in a window where Start is pressed. Returns what the official tool
    // got, from the speed on.
    QString Flash(const QString& commands) const {
        QFile::remove(Path("call"));
        const auto [status, errors] = Run(commands);
        if (status != 0) return errors;
        const QString call = Read(Path("call"));
        return call.mid(call.indexOf("--baud")).trimmed();
    }

  private:
    QTemporaryDir mRoot;
};

bool MakesAFolder(std::uint64_t call) {
#ifdef SYS_mkdir
    if (call == SYS_mkdir) return true;
#endif
    return call == SYS_mkdirat;
}

// Runs the kit and sends it SIGTERM at a step: a call of the system, counted from the first folder
// that it makes. Returns its status; none where it has fewer steps.
std::optional<int> EndAtStep(const Machine& machine, const QByteArray& kit, int step) {
    // The leak checker can't run in a traced process.
    const QByteArray command = "export ASAN_OPTIONS=detect_leaks=0; cd " + machine.Home().toUtf8() +
                               "; exec ../usr/bin/" + kit;
    const pid_t child = fork();
    if (child == 0) {
        ptrace(PTRACE_TRACEME, 0, nullptr, nullptr);
        execl("/bin/sh", "sh", "-c", command.constData(), nullptr);
        _exit(99);
    }
    int status = 0;
    int steps = -1;  // before the first folder
    waitpid(child, &status, 0);
    ptrace(PTRACE_SETOPTIONS, child, nullptr, PTRACE_O_TRACESYSGOOD | PTRACE_O_EXITKILL);
    for (int signal = 0; ptrace(PTRACE_SYSCALL, child, nullptr, signal) == 0;) {
        waitpid(child, &status, 0);
        if (!WIFSTOPPED(status)) break;
        signal = WSTOPSIG(status) == SIGTERM ? SIGTERM : 0;
        __ptrace_syscall_info info{};
        ptrace(PTRACE_GET_SYSCALL_INFO, child, sizeof info, &info);
        if (info.op != PTRACE_SYSCALL_INFO_ENTRY) continue;
        if (steps >= 0 || MakesAFolder(info.entry.nr))
            if (++steps == step) kill(child, SIGTERM);
    }
    if (steps < step) return {};
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

// The README's calls of the kit.
QString ReadmeCall(int number) {
    const QRegularExpression call(R"(quillstone-kit --speed(\\\n|.)*)");
    auto calls = call.globalMatch(Machine::Read(QUILLSTONE_SOURCES "/README.md"));
    while (number-- > 0) calls.next();
    return calls.next().captured();
}

}  // namespace

class KitTest : public QObject {
    Q_OBJECT
  private slots:
    // One line, status 2, and no file is changed.
    void Refuses_data() {
        const auto row = Columns<QString, QByteArray, Files>("arguments", "message", "files");
        const auto call = [&](const QString& arguments, const QByteArray& message,
                              const Files& files = {}) { row(message, arguments, message, files); };
        call("--copy", "usage: ");
        call("-x new", "unknown option: -x");
        call("--tool a.bin new", "no flash tool to run at a.bin");
        call("x/y", "no folder x to make it in");
        call("a.bin", "not a folder: a.bin");
        call("new a.bin", "an image without an address");
        const QByteArray number = "not a number such as 65536 or 0x10000: ";
        call("empty a.bin 010", number + "010");
        call("new a.bin 4294967296", "address beyond 32 bits: 4294967296");
        call("new a.bin 0xFFFFFFFF", "a.bin ends beyond 32 bits");
        call("new \"b'.bin\" 0x10 a.bin 12", "b'.bin and a.bin overlap");
        call("new a.bin 0 x/a.bin 99", "two images with the name a.bin", {{"x/a.bin", "a.bin"}});
        call("--copy new -- -d.bin 0 x/-d.bin 99", "two images with the name -d.bin",
             {{"x/-d.bin", ""}});
        const QByteArray name = "a setting file can't hold a name with ";
        call("new 'c,\n' 0", name + "a comma: c,?");
        call("new c%s.bin 0", "no image to read at c%s.bin");
        call("--speed 1 new", "not a speed that the window has: 1");
        call("--reset 'a;b' new", "not a word for a reset method: a;b");

        const auto list = [&](const QByteArray& text, const QByteArray& message) {
            call("--from list new", message, {{"list", text}});
        };
        list("0 a.bin 0x99", "address without a file in list: 0x99");
        list("0 \xFF", name + "bytes that are no UTF-8: \xFF");
        list("0 a.bin -x", "unknown option in list: -x");
        list("0 \"a.bin\n\"", "a quote without its end in list");
        list(QByteArray(9000, 'x'), "too large for a list of images: list");

        const auto ideData = [&](const QByteArray& json, const QByteArray& message) {
            call("--from p new", message, {{"p/idedata.json", json}});
        };
        call("--from p new",
             "no build in p: no flash_args, build/flash_args, idedata.json or "
             ".pio/build/ENV/idedata.json (PlatformIO writes it by: pio run -t idedata)",
             {{"p/x", ""}});
        call("--from p new", "more than one build, name one of them: p/.pio/build/a p/.pio/build/b",
             {{"p/.pio/build/b/idedata.json", ""}, {"p/.pio/build/a/idedata.json", ""}});
        ideData("[[", "no JSON object in p/idedata.json: ");
        ideData("{}", "no list extra.flash_images in p/idedata.json");
        ideData(R"({"prog_path":"ROOT/x.elf","extra":{"flash_images":[]}})",
                "no image to read at ROOT/x.bin");
        ideData(R"({"prog_path":"x.elf","extra":{"flash_images":[],"application_offset":1.5}})",
                number + "1.5");

        // A folder that the kit could have made but for one entry.
        for (const QByteArray entry :
             {".notes", "esptool/x", "bin/b.bin", "bin/installsetting.csv"}) {
            Files files{{"made/esptool/esptool", ""},
                        {"made/bin/installsetting.csv", QByteArray(kSettingMark) + "\nup,a.bin,0"}};
            files["made/" + entry] = "";
            call("made a.bin 0",
                 "neither an empty folder nor one by quillstone-kit: made, because of " + entry,
                 files);
        }
    }
    void Refuses() {
        const auto [arguments, message, files] =
            Row<QString, QByteArray, Files>("arguments", "message", "files");
        const Machine machine;
        machine.Write(files);
        const Files before = machine.Tree();
        const auto [status, errors] = machine.Run("quillstone-kit " + arguments);
        QCOMPARE(status, 2);
        const QByteArray line = QByteArray(errors).replace(machine.Home().toUtf8(), "ROOT");
        QVERIFY2(line.startsWith("quillstone-kit: " + message), line);
        QCOMPARE(errors.count('\n'), 1);
        QCOMPARE(machine.Tree(), before);
    }

    // Options anywhere, a list of many forms, then other options for the same folder.
    void MakesAndMakesAgain() {
        const Machine machine;
        machine.Write({{"list",
                        "--flash-mode \"\\\" \\\\\" --flash_freq=40m\r\n\r\n8192\tb\\'.bin "
                        "8200 \"b'\".'b'\"in\" 0x2010 ROOT/a.bin"}});
        const auto link = [&machine](const char* to) { return "-> " + machine.Path(to).toUtf8(); };
        QCOMPARE(machine.Run("quillstone-kit empty/ --speed 921600 --reset none --tool tool --from "
                             "list -- -d.bin 6 a.bin 0 \"b'.bin\" 12 a.bin 0X100"),
                 qMakePair(0, QByteArray("quillstone-kit: b'.bin and a.bin share a sector of 4096 "
                                         "bytes: the official tool won't write them\n")));
        const Files linked{
            {"bin", "/"},
            {"bin/-d.bin", link("-d.bin")},
            {"bin/a.bin", link("a.bin")},
            {"bin/b'.bin", link("b'.bin")},
            {"bin/installsetting.csv",
             QByteArray(kSettingMark) +
                 "\ncd,none\ncb,921600\nup,b'.bin,8192\nup,b'.bin,8200\nup,a.bin,0x2010\n"
                 "up,-d.bin,6\nup,a.bin,0\nup,b'.bin,12\nup,a.bin,0X100\n"},
            {"esptool", "/"},
            {"esptool/esptool", link("tool")}};
        QCOMPARE(machine.Tree("empty"), linked);

        // Who stands in the folder stays in it.
        const Files copied{{"bin", "/"},
                           {"bin/a.bin", "a.bin"},
                           {"bin/installsetting.csv", QByteArray(kSettingMark) + "\nup,a.bin,7\n"},
                           {"esptool", "/"},
                           {"esptool/esptool", Machine::Read(QUILLSTONE_SOURCES "/bridge/esptool")},
                           {"quillstone", Machine::Read(QUILLSTONE_PROGRAM)}};
        QCOMPARE(machine.Run("cd empty; quillstone-kit --program . ../a.bin 7; cd bin"),
                 qMakePair(0, QByteArray()));
        QCOMPARE(machine.Tree("empty"), copied);
        // From the folder itself only copies can be made.
        for (const QByteArray image : {"bin/a.bin", "../link.bin"}) {
            QFile::link(machine.Path("empty/bin/a.bin"), machine.Path("link.bin"));
            QCOMPARE(machine.Run("cd empty; quillstone-kit . " + image + " 7").second,
                     "quillstone-kit: " + image + " lies in .: use --copy\n");
        }
        QCOMPARE(machine.Tree("empty"), copied);
    }

    // From README's commands with a build of each kind to what the official tool gets. Links follow
    // the next build, copies don't. An image is written as its address and its file.
    void FollowsTheBuild_data() {
        const auto row =
            Columns<int, QString, QByteArray, QStringList>("number", "list", "text", "images");
        row("ESP-IDF, on Debian 12", 2, "project/build/flash_args",
            "--flash_mode dio --flash_freq 40m --flash_size 2MB\n"
            "0x1000 bootloader/bootloader.bin\n0x8000 table.bin\n0x10000 \"it's 1%.bin\"\n",
            {"0x1000 project/build/bootloader/bootloader.bin", "0x8000 project/build/table.bin",
             "0x10000 project/build/it's 1%.bin"});
        row("Arduino", 0, "project/flash_args",
            "--flash-mode dio --flash-freq 80m --flash-size 4MB\r\n0x0 S.ino.bootloader.bin\r\n"
            "0x8000 S.ino.partitions.bin\r\n0xe000 boot_app0.bin\r\n0x10000 S.ino.bin\r\n",
            {"0x0 project/S.ino.bootloader.bin", "0x8000 project/S.ino.partitions.bin",
             "0xe000 project/boot_app0.bin", "0x10000 project/S.ino.bin"});
        row("PlatformIO", 0, "project/.pio/build/esp32/idedata.json",
            R"({"prog_path": "ROOT/project/.pio/build/esp32/firmware.elf", "extra": {
                "flash_images": [{"offset": "0x1000", "path": "ROOT/core/boot.bin"},
                                 {"offset": 32768, "path": "partitions.bin"}]}})",
            {"0x1000 core/boot.bin", "32768 project/.pio/build/esp32/partitions.bin",
             "0x10000 project/.pio/build/esp32/firmware.bin"});
        row("images by their names", 1, "unused", "",
            {"0x1000 board/bootloader.bin", "0x8000 board/partitions.bin",
             "0x10000 board/app.bin"});
    }
    void FollowsTheBuild() {
        const auto [number, list, text, images] =
            Row<int, QString, QByteArray, QStringList>("number", "list", "text", "images");
        const Machine machine;
        const bool five = number == 2;
        machine.Write({{list, text},
                       {five ? ".local/bin/esptool" : "../usr/bin/esptool",
                        QByteArray(kOfficialTool).replace("%1", five ? "5.0.2" : "4.7.0")}});
        const auto build = [&machine, files = images](const QByteArray& bytes) {
            for (const QString& image : files) machine.Write({{image.section(' ', 1), bytes}});
        };
        const auto call = [five, files = images](const QString& bytes) {
            QString words = "--baud 460800 --before ";
            words += five ? "default-reset write-flash" : "default_reset write_flash";
            for (const QString& image : files)
                words +=
                    ' ' + image.section(' ', 0, 0) + ' ' + image.section('/', -1) + '=' + bytes;
            return words;
        };
        const QString window = "\ncd ~/firmware\nquillstone";
        QString kit = ReadmeCall(number);
        build("old");
        QCOMPARE(machine.Flash(kit + window), call("old"));
        build("new");
        QCOMPARE(machine.Flash(window), call("new"));
        QCOMPARE(machine.Flash(kit.replace("--speed", "--copy --speed") + window), call("new"));
        build("newer");
        QCOMPARE(machine.Flash(window), call("new"));
    }

    // The folder is the old one whole or the new one whole, and nothing stands beside it.
    void EndsAtAnyStep_data() {
        const auto row = Columns<QString>("first");
        row("a new folder", ":");
        row("in place of links", "quillstone-kit made a.bin 0");
    }
    void EndsAtAnyStep() {
        QFETCH(const QString, first);
        const QByteArray then = "quillstone-kit --copy made a.bin 9 \"b'.bin\" 5000";
        const Machine machine;
        const auto prepare = [&] {
            QDir(machine.Path("made")).removeRecursively();
            machine.Run(first);
            return machine.Tree();
        };
        const Files before = prepare();
        QVERIFY(!EndAtStep(machine, then, INT_MAX));
        const Files after = machine.Tree();
        QCOMPARE(prepare(), before);
        int step = 0, done = 0;
        for (; const auto status = EndAtStep(machine, then, step); ++step) {
            QCOMPARE(*status, machine.Tree() == after ? 0 : 128 + SIGTERM);
            if (*status != 0) QCOMPARE(machine.Tree(), before);
            if (*status == 0 && ++done) prepare();
        }
        QVERIFY(step > done + 10 && done > 0);
    }

    // A limit on the size of files gives the same errors as a disk that is full: for the setting
    // file, for the tool, and for the program.
    void DiskFull_data() { EndsAtAnyStep_data(); }
    void DiskFull() {
        QFETCH(const QString, first);
        const Machine machine;
        machine.Run(first);
        const Files before = machine.Tree();
        for (const rlim_t bytes : {10, 1000, 10'000}) {
            const rlimit size{bytes, bytes};
            const auto [status, errors] =
                machine.Run("exec quillstone-kit --program made \"b'.bin\" 1",
                            [&size] { setrlimit(RLIMIT_FSIZE, &size); });
            QCOMPARE(status, 1);
            QCOMPARE(errors.count('\n'), 1);
            QCOMPARE(machine.Tree(), before);
        }
    }
};

QTEST_GUILESS_MAIN(KitTest)
#include "KitTest.moc"
