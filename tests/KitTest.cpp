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

// An installed Quillstone, a home folder, and a few images.
class Machine {
  public:
    Machine() {
        for (const char* folder : {"usr/bin", "usr/system", "home", "empty"})
            QDir(Root()).mkpath(folder);
        for (const char* tool : {"cat", "mv", "sed", "sh", "tail", "tr"})
            QFile::link(QStandardPaths::findExecutable(tool), Path("usr/system/") + tool);
        Write({{"usr/lib/quillstone/bridge/esptool", Read(QUILLSTONE_SOURCES "/bridge/esptool")},
               {"tool", ""}});
        QFile::copy(QUILLSTONE_KIT, Path("usr/bin/quillstone-kit"));
        QFile::copy(QUILLSTONE_PROGRAM, Path("usr/lib/quillstone/quillstone"));
        QFile::link("../lib/quillstone/quillstone", Path("usr/bin/quillstone"));
        for (const char* name : {"a.bin", "b'.bin", "-d.bin", "full/a.bin"}) Write({{name, name}});
        for (const char* name : {"tool", "usr/lib/quillstone/bridge/esptool"}) MakeExecutable(name);
    }

    QString Root() const { return QDir(mRoot.path()).canonicalPath(); }
    QString Path(const QString& relative) const { return Root() + '/' + relative; }
    static QByteArray Read(const QString& path) {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("none");
    }
    // In the bytes ROOT stands for the machine's root.
    void Write(const Files& files) const {
        for (auto file = files.begin(); file != files.end(); ++file) {
            QDir(Root()).mkpath(QFileInfo(file.key()).path());
            QFile out(Path(file.key()));
            if (!out.open(QIODevice::WriteOnly)) qFatal("can't write %s", qPrintable(file.key()));
            out.write(QByteArray(*file).replace("ROOT", Root().toUtf8()));
        }
    }
    void WriteTool(const QString& place, const QString& version) const {
        Write({{place, QString(kOfficialTool).replace("%1", version).toUtf8()}});
        MakeExecutable(place);
    }
    void MakeExecutable(const QString& name) const {
        QFile::setPermissions(Path(name), QFile::Permissions(0x7755));
    }

    // All entries below the root but the installed ones, with the bytes of files and where links
    // lead.
    Files Tree() const {
        Files tree;
        QDirIterator entries(Root(),
                             QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden | QDir::System,
                             QDirIterator::Subdirectories);
        while (entries.hasNext()) {
            const QFileInfo entry(entries.next());
            if (entry.filePath().startsWith(Path("usr"))) continue;
            tree[entry.filePath().mid(Root().size() + 1)] =
                entry.isSymLink() ? "-> " + QFile::symLinkTarget(entry.filePath()).toUtf8()
                : entry.isDir()   ? "/"
                                  : Read(entry.filePath());
        }
        return tree;
    }

    // Runs a command there. Returns its status and the text of its errors.
    QPair<int, QByteArray> Run(const QString& program, const QStringList& arguments,
                               const std::function<void()>& inChild = {}) const {
        QProcess process;
        auto environment = QProcessEnvironment::systemEnvironment();
        environment.insert("HOME", Path("home"));
        environment.insert("PATH", Path("usr/bin") + ":" + Path("usr/system"));
        environment.insert("QT_PLUGIN_PATH", QUILLSTONE_PLUGINS);
        environment.insert("QT_QPA_GENERIC_PLUGINS", "driver");
        environment.insert("QUILLSTONE_DRIVER",
                           "Ctrl+Return|wait " + Path("home/call") + "|print output|close");
        process.setProcessEnvironment(environment);
        process.setWorkingDirectory(Root());
        process.setStandardOutputFile(QProcess::nullDevice());
        if (inChild) process.setChildProcessModifier(inChild);
        process.start(program, arguments);
        if (!process.waitForFinished(60'000)) return {-1, "hangs"};
        return {process.exitCode(), process.readAllStandardError()};
    }
    QPair<int, QByteArray> Kit(const QStringList& arguments,
                               const std::function<void()>& inChild = {}) const {
        return Run(Path("usr/bin/quillstone-kit"), arguments, inChild);
    }
    // Runs the commands in a shell; they end in a window where Start is pressed. Returns what the
    // official tool got, from the speed on.
    QString Flash(const QString& commands) const {
        QFile::remove(Path("home/call"));
        const auto [status, errors] = Run("/bin/sh", {"-ec", commands});
        if (status != 0) return errors;
        const QString call = Read(Path("home/call"));
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
std::optional<int> EndAtStep(const Machine& machine, const QList<QByteArray>& arguments, int step) {
    const QByteArray program = machine.Path("usr/bin/quillstone-kit").toUtf8();
    std::vector<char*> words{const_cast<char*>(program.data())};
    for (const QByteArray& argument : arguments)
        words.push_back(const_cast<char*>(argument.data()));
    words.push_back(nullptr);
    const QByteArray root = machine.Root().toUtf8();
    const pid_t child = fork();
    if (child == 0) {
        // The leak checker can't run in a traced process.
        setenv("ASAN_OPTIONS", "detect_leaks=0", 1);
        if (chdir(root.constData()) == 0 && ptrace(PTRACE_TRACEME, 0, nullptr, nullptr) == 0)
            execv(program.constData(), words.data());
        _exit(99);
    }
    int status = 0;
    int steps = -1;  // before the first folder
    waitpid(child, &status, 0);
    ptrace(PTRACE_SETOPTIONS, child, nullptr, PTRACE_O_TRACESYSGOOD | PTRACE_O_EXITKILL);
    for (int signal = 0; ptrace(PTRACE_SYSCALL, child, nullptr, signal) == 0;) {
        waitpid(child, &status, 0);
        if (!WIFSTOPPED(status)) break;
        signal = WSTOPSIG(status);
        if (signal != (SIGTRAP | 0x80)) continue;
        signal = 0;
        __ptrace_syscall_info info{};
        ptrace(PTRACE_GET_SYSCALL_INFO, child, sizeof info, &info);
        if (info.op != PTRACE_SYSCALL_INFO_ENTRY) continue;
        if (steps >= 0 || MakesAFolder(info.entry.nr))
            if (++steps == step) kill(child, SIGTERM);
    }
    if (steps < step) return {};
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

// The section's commands, by their paragraph, without those that get packages.
QString Readme(int paragraph) {
    const QString text = Machine::Read(QUILLSTONE_SOURCES "/README.md");
    const QString section = text.section("in five commands\n", 1).section("\n## ", 0, 0);
    QStringList paragraphs;
    for (const QString& part : section.split("\n\n"))
        if (part.startsWith("    ")) paragraphs += part;
    return paragraphs.value(paragraph).remove(
        QRegularExpression(" *(scripts/package|sudo apt install|pipx install)\\b.*(\n|$)"));
}

const Files kEspIdf{{"home/project/build/flash_args",
                     "--flash_mode dio --flash_freq 40m --flash_size 2MB\n"
                     "0x1000 bootloader/bootloader.bin\n0x8000 table.bin\n"
                     "0x10000 \"it's 1%.bin\"\n"},
                    {"home/project/build/bootloader/bootloader.bin", "old"},
                    {"home/project/build/table.bin", "old"},
                    {"home/project/build/it's 1%.bin", "old"}};
constexpr char kEspIdfCall[] = "0x1000 bootloader.bin=% 0x8000 table.bin=% 0x10000 it's 1%.bin=%";

}  // namespace

class KitTest : public QObject {
    Q_OBJECT
  private slots:
    // One line, status 2, and no file is changed.
    void Refuses_data() {
        const auto row = Columns<QString, QByteArray, Files>("arguments", "message", "files");
        const auto call = [&](const char* name, const char* arguments, const QByteArray& message,
                              const Files& files = {}) { row(name, arguments, message, files); };
        call("no folder to make", "--copy", "usage: ");
        call("no value", "new --tool", "no value after --tool");
        call("an empty value", "--from  new", "no value after --from");
        call("an unknown option", "-x new", "unknown option: -x");
        call("no tool", "--tool a.bin new", "no flash tool to run at a.bin");
        call("no folder around it", "x/y", "no folder x to make it in");
        call("a file", "a.bin", "not a folder: a.bin");
        call("no address", "new a.bin", "an image without an address");
        const QByteArray number = "not a number such as 65536 or 0x10000: ";
        call("an octal address", "empty a.bin 010", number + "010");
        call("a signed address", "new a.bin 0x-1", number + "0x-1");
        call("a large address", "new a.bin 4294967296", "address beyond 32 bits: 4294967296");
        call("an end beyond 32 bits", "new a.bin 0xFFFFFFFF", "a.bin ends beyond 32 bits");
        call("an overlap", "new b'.bin 0x10 a.bin 12", "b'.bin and a.bin overlap");
        call("two of one name", "--copy new a.bin 0 full/a.bin 99",
             "two images with the name a.bin");
        call("links to two that are the same", "new a.bin 0 x/a.bin 99",
             "two images with the name a.bin", {{"x/a.bin", "a.bin"}});
        const QByteArray name = "a setting file can't hold a name with ";
        call("a comma and a line end", "new c,\r 0", name + "a comma: c,?");
        call("no such image", "new c%s.bin 0", "no image to read at c%s.bin");
        call("no such speed", "--speed 1 new", "not a speed that the window has: 1");
        call("a command as reset", "--reset a;b new", "not a word for a reset method: a;b");

        const auto list = [&](const char* what, const char* text, const QByteArray& message) {
            row(what, "--from list new", message, {{"list", text}});
        };
        list("an empty list", "--flash_mode dio", "no image in list");
        list("an address alone", "0 a.bin 0x99", "address without a file in list: 0x99");
        list("bytes that are no UTF-8", "0 \xFF", name + "bytes that are no UTF-8: \xFF");
        list("an unknown option in a list", "0 a.bin -x", "unknown option in list: -x");
        list("an option alone", "0 a.bin --flash_size", "no value after --flash_size in list");
        list("an open quote", "0 \"a.bin\n\"", "a quote without its end in list");
        list("a large file", QByteArray(9000, 'x'), "too large for a list of images: list");

        const auto build = [&](const char* what, const QByteArray& message, const Files& files) {
            row(what, "--from project new", message, files);
        };
        const auto ideData = [&](const char* what, const char* json, const QByteArray& message) {
            build(what, message, {{"project/idedata.json", json}});
        };
        const QByteArray file = " in project/idedata.json";
        build("nothing there", "no list to read at project", {});
        build("no build",
              "no build in project: no flash_args, build/flash_args, idedata.json or "
              ".pio/build/ENV/idedata.json (PlatformIO writes it by: pio run -t idedata)",
              {{"project/x", ""}});
        build(
            "two environments",
            "more than one build, name one of them: project/.pio/build/a project/.pio/build/b",
            {{"project/.pio/build/b/idedata.json", ""}, {"project/.pio/build/a/idedata.json", ""}});
        ideData("deep JSON", QByteArray(100'000, '['),
                "no JSON object" + file + ": too deeply nested document");
        ideData("JSON of something else", "{}", "no list extra.flash_images" + file);
        ideData("no application", R"({"extra":{"flash_images":[]}})", "no prog_path" + file);
        ideData("an application that isn't built",
                R"({"prog_path":"ROOT/x.elf","extra":{"flash_images":[]}})",
                "no image to read at ROOT/x.bin");
        ideData("an image without its path", R"({"extra":{"flash_images":[{"offset":1}]}})",
                "no path of an image" + file);
        ideData("an offset that is no number",
                R"({"prog_path":"x.elf","extra":{"flash_images":[],"application_offset":1.5}})",
                number + "1.5");

        // What the kit hasn't made. `entry` stands in its folder, in place of the image.
        const QByteArray foreign = "neither an empty folder nor one by quillstone-kit: made";
        const auto other = [&](const char* what, const QString& entry, const QByteArray& named,
                               const QByteArray& mark = kSettingMark) {
            row(what, "made a.bin 0", foreign + ", because of " + named,
                {{"made/esptool/esptool", ""},
                 {"made/bin/installsetting.csv", mark + "\nup,a.bin,0\n"},
                 {"made/" + entry, ""}});
        };
        call("the root folder", "//", foreign.chopped(4) + "//, because of ");
        other("another file", ".notes", ".notes");
        other("another tool", "esptool/x", "esptool/x");
        other("an image of the user's", "bin/b.bin", "bin/b.bin");
        other("a folder as image", "bin/a.bin/x", "bin/a.bin");
        other("a setting file of the user's", "quillstone", "bin/installsetting.csv", "cb,9600");
    }
    void Refuses() {
        const auto [arguments, message, files] =
            Row<QString, QByteArray, Files>("arguments", "message", "files");
        const Machine machine;
        machine.Write(files);
        const Files before = machine.Tree();
        const auto [status, errors] = machine.Kit(arguments.split(' '));
        QCOMPARE(status, 2);
        const QByteArray line = QByteArray(errors).replace(machine.Root().toUtf8(), "ROOT");
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
        const auto made = [&machine] {
            Files tree = machine.Tree();
            tree.removeIf([](const auto& entry) { return !entry.key().startsWith("empty/"); });
            return tree;
        };
        const auto link = [&machine](const char* to) { return "-> " + machine.Path(to).toUtf8(); };
        QCOMPARE(machine.Kit({"empty/", "--speed", "921600", "--reset", "none", "--tool", "tool",
                              "--from", "list", "--", "-d.bin", "6", "a.bin", "0", "b'.bin", "12",
                              "a.bin", "0X100"}),
                 qMakePair(0, QByteArray("quillstone-kit: b'.bin and a.bin share a sector of 4096 "
                                         "bytes: the official tool won't write them\n")));
        const Files linked{
            {"empty/bin", "/"},
            {"empty/bin/-d.bin", link("-d.bin")},
            {"empty/bin/a.bin", link("a.bin")},
            {"empty/bin/b'.bin", link("b'.bin")},
            {"empty/bin/installsetting.csv",
             QByteArray(kSettingMark) +
                 "\ncd,none\ncb,921600\nup,b'.bin,8192\nup,b'.bin,8200\nup,a.bin,0x2010\n"
                 "up,-d.bin,6\nup,a.bin,0\nup,b'.bin,12\nup,a.bin,0X100\n"},
            {"empty/esptool", "/"},
            {"empty/esptool/esptool", link("tool")}};
        QCOMPARE(made(), linked);

        // Who stands in the folder stays in it.
        const Files copied{
            {"empty/bin", "/"},
            {"empty/bin/a.bin", "a.bin"},
            {"empty/bin/installsetting.csv", QByteArray(kSettingMark) + "\nup,a.bin,7\n"},
            {"empty/esptool", "/"},
            {"empty/esptool/esptool", Machine::Read(QUILLSTONE_SOURCES "/bridge/esptool")},
            {"empty/quillstone", Machine::Read(QUILLSTONE_PROGRAM)}};
        const QString kit = "cd empty; ../usr/bin/quillstone-kit ";
        QCOMPARE(machine.Run("/bin/sh", {"-ec", kit + "--program . ../a.bin 7; cd bin"}),
                 qMakePair(0, QByteArray()));
        QCOMPARE(made(), copied);
        // From the folder itself only copies can be made.
        QCOMPARE(machine.Run("/bin/sh", {"-ec", kit + ". bin/a.bin 7"}).second,
                 "quillstone-kit: bin/a.bin lies in .: use --copy\n");
        QCOMPARE(made(), copied);
    }

    // From README's commands with a build of each kind to what the official tool gets. Links follow
    // the next build, copies don't.
    void FollowsTheBuild_data() {
        const auto row =
            Columns<int, QString, Files, QString>("paragraph", "tool", "build", "call");
        const QString four = "usr/bin/esptool", five = "home/.local/bin/esptool";
        row("ESP-IDF, Debian 13", 0, four, kEspIdf, kEspIdfCall);
        row("ESP-IDF, Debian 12", 2, five, kEspIdf, kEspIdfCall);
        row("Arduino", 0, four,
            {{"home/project/flash_args",
              "--flash-mode dio --flash-freq 80m --flash-size 4MB\r\n0x0 S.ino.bootloader.bin\r\n"
              "0x8000 S.ino.partitions.bin\r\n0xe000 boot_app0.bin\r\n0x10000 S.ino.bin\r\n"},
             {"home/project/S.ino.bootloader.bin", "old"},
             {"home/project/S.ino.partitions.bin", "old"},
             {"home/project/boot_app0.bin", "old"},
             {"home/project/S.ino.bin", "old"}},
            "0x0 S.ino.bootloader.bin=% 0x8000 S.ino.partitions.bin=% 0xe000 boot_app0.bin=% "
            "0x10000 S.ino.bin=%");
        row("PlatformIO", 0, four,
            {{"home/project/.pio/build/esp32/idedata.json",
              R"({"prog_path": "ROOT/home/project/.pio/build/esp32/firmware.elf", "extra": {
                  "flash_images": [{"offset": "0x1000", "path": "ROOT/home/core/boot.bin"},
                                   {"offset": 32768, "path": "partitions.bin"}]}})"},
             {"home/core/boot.bin", "old"},
             {"home/project/.pio/build/esp32/partitions.bin", "old"},
             {"home/project/.pio/build/esp32/firmware.bin", "old"},
             {"home/project/.pio/build/other/firmware.bin", "old"}},
            "0x1000 boot.bin=% 32768 partitions.bin=% 0x10000 firmware.bin=%");
        row("images by their names", 1, four,
            {{"home/board/bootloader.bin", "old"},
             {"home/board/partitions.bin", "old"},
             {"home/board/app.bin", "old"}},
            "0x1000 bootloader.bin=% 0x8000 partitions.bin=% 0x10000 app.bin=%");
    }
    void FollowsTheBuild() {
        const auto [paragraph, tool, build, images] =
            Row<int, QString, Files, QString>("paragraph", "tool", "build", "call");
        const Machine machine;
        const bool five = tool.startsWith("home");
        machine.WriteTool(tool, five ? "5.0.2" : "4.7.0");
        auto buildAs = [&machine, files = build](const QByteArray& bytes) mutable {
            for (auto file = files.begin(); file != files.end(); ++file)
                if (file.key().endsWith(".bin")) *file = bytes;
            machine.Write(files);
        };
        const auto call = [five, images](const QString& bytes) {
            return "--baud 460800 --before " +
                   QString(five ? "default-reset write-flash " : "default_reset write_flash ") +
                   QString(images).replace("=%", "=" + bytes);
        };
        const QString window = "\ncd ~/firmware\nquillstone";
        QString kit = Readme(paragraph).section("cd ~/firmware", 0, 0);
        QVERIFY(kit.contains("quillstone-kit --speed") &&
                Readme(0).simplified().endsWith(" cd ~/firmware quillstone"));
        buildAs("old");
        QCOMPARE(machine.Flash(kit + window), call("old"));
        buildAs("new");
        QCOMPARE(machine.Flash(window), call("new"));
        QCOMPARE(machine.Flash(kit.replace("--speed", "--copy --speed") + window), call("new"));
        buildAs("newer");
        QCOMPARE(machine.Flash(window), call("new"));
    }

    // The folder is the old one whole or the new one whole, and nothing stands beside it.
    void EndsAtAnyStep_data() {
        const auto row = Columns<QStringList, QList<QByteArray>>("first", "then");
        row("a new folder", {}, {"made", "a.bin", "0"});
        row("copies in place of links", {"made", "a.bin", "0"},
            {"--copy", "made", "a.bin", "9", "b'.bin", "5000"});
    }
    void EndsAtAnyStep() {
        const auto [first, then] = Row<QStringList, QList<QByteArray>>("first", "then");
        const Machine machine;
        const auto prepare = [&machine, first = first] {
            QDir(machine.Path("made")).removeRecursively();
            if (!first.isEmpty()) machine.Kit(first);
            return machine.Tree();
        };
        const Files before = prepare();
        QVERIFY(!EndAtStep(machine, then, INT_MAX));
        const Files after = machine.Tree();
        QCOMPARE(prepare(), before);
        int ended = 0;
        int done = 0;
        while (const auto status = EndAtStep(machine, then, ended + done)) {
            const bool isDone = *status == 0;
            if (!isDone) QCOMPARE(*status, 128 + SIGTERM);
            QCOMPARE(machine.Tree(), isDone ? after : before);
            ++(isDone ? done : ended);
            if (isDone) prepare();
        }
        qInfo("%d steps left the old state, %d the new one", ended, done);
        QVERIFY(ended > 10 && done > 0);
    }

    void DiskFull_data() {
        const auto row = Columns<int>("bytes");
        row("for the setting file", 10);
        row("for the tool", 1000);
        row("for the program", 10'000);
    }
    // A limit on the size of files gives the same errors as a disk that is full.
    void DiskFull() {
        const auto [bytes] = Row<int>("bytes");
        const Machine machine;
        for (const QStringList& first : {QStringList(), QStringList{"empty", "a.bin", "0"}}) {
            if (!first.isEmpty()) machine.Kit(first);
            const Files before = machine.Tree();
            const auto [status, errors] =
                machine.Kit({"--program", "empty", "b'.bin", "1"}, [limit = bytes] {
                    const rlimit size{static_cast<rlim_t>(limit), static_cast<rlim_t>(limit)};
                    setrlimit(RLIMIT_FSIZE, &size);
                });
            QCOMPARE(status, 1);
            QCOMPARE(errors.count('\n'), 1);
            QCOMPARE(machine.Tree(), before);
        }
    }
};

QTEST_GUILESS_MAIN(KitTest)
#include "KitTest.moc"
