// The run of a command: its output, its end, and what the system has left of it afterwards.
#include <fcntl.h>
#include <signal.h>
#include <sys/ptrace.h>
#include <sys/wait.h>

#include <QPlainTextEdit>
#include <QProcess>
#include <QRegularExpression>
#include <array>

#include "Testing.h"

namespace {

// Whatever a run starts has this in its environment, wherever it has gone since. The dead that wait
// for their parents have no environment any more.
QByteArray Mark() { return "QUILLSTONE_RUN_OF_" + QByteArray::number(getpid()) + '_'; }

QList<int> MarkedProcesses() {
    QList<int> processes;
    for (const QString& name : QDir("/proc").entryList(QDir::Dirs)) {
        QFile environment("/proc/" + name + "/environ");
        if (environment.open(QIODevice::ReadOnly) && environment.readAll().contains(Mark()))
            processes += name.toInt();
    }
    return processes;
}

void PressStop() {
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Period, Qt::ControlModifier);
}

struct Runner : OpenedWindow {
    void Start(const QByteArray& command) const {
        Widget<QWidget>("StartPB")->setFocus();  // ends an open edit, which composes the command
        window.InstallEF().Text(command.toStdString());
        Click("StartPB");
    }
    bool Ended() const {
        return QTest::qWaitFor([this] { return window.StartPB().Enabled(); }, 20'000);
    }
    QString Output() const { return QString::fromStdString(window.rEF().Text()).mid(8); }
};

// The program from start to end, with a run begun at once; with the first output its window is
// closed or it is killed.
int ProgramWithRun(const char* command, bool killed) {
    InitializeFramework([&] {
        const auto window = EspWin::Instance();
        window->esptool().DataAvailable = [killed](Shell&) {
            if (killed) raise(SIGKILL);
            for (QWidget* frame : QApplication::topLevelWidgets()) frame->close();
        };
        window->esptool().Execute(command);
    });
    RunEventLoop();
    return EndFramework();
}

// A tool of up to 200 processes, each of which goes on forking, and ends when there is no room for
// one more. Half a minute ends all of them, whatever the test has found: nobody else might.
[[noreturn]] void ForkWithoutEnd() {
    signal(SIGCHLD, SIG_IGN);
    std::array<int, 2> room{};
    if (pipe2(room.data(), O_NONBLOCK) != 0) _exit(1);
    std::array<char, 200> places{};
    bool said = write(room[1], places.data(), places.size()) < 0;
    const time_t end = time(nullptr) + 30;
    for (const pid_t first = getpid(); time(nullptr) < end;) {
        if (read(room[0], places.data(), 1) == 1) {
            if (fork() == 0) setsid();
        } else if (getpid() != first) {
            _exit(write(room[1], places.data(), 1) < 0 ? 1 : 0);
        } else if (!said) {
            said = puts("x") < 0 || fflush(stdout) == 0;
        }
    }
    _exit(0);
}

// Runs that end in different ways when they are asked to, and what they print until then.
void AddRuns(const std::function<void(const char*, QByteArray, const char*)>& add) {
    const QByteArray us = QApplication::applicationFilePath().toLocal8Bit();
    add("plain", "echo x; exec sleep 999", "x\n");
    add("a last word", "trap 'echo last; exit' TERM; echo x; sleep 999 & wait", "x\nlast\n");
    add("a pipe", "sleep 999 & (echo x; exec sleep 999) | sed s/^/=/", "=x\n");
    add("ignores TERM", "trap '' TERM; echo x; while :; do sleep 999; done", "x\n");
    add("ignores TERM and HUP", "trap '' TERM HUP; sleep 999 & echo x; cat <&1; wait", "x\n");
    add("child in the background", "sleep 999 & echo x; cat <&1", "x\n");
    add("child in its own session", "setsid sh -c 'trap \"\" TERM; echo x; sleep 999; :' & wait",
        "x\n");
    add("a daemon, its parent gone", "setsid sh -c 'trap \"\" TERM; sleep 999 &'; echo x; cat <&1",
        "x\n");
    add("stopped", "trap 'echo last; exit' TERM; echo x; kill -STOP $$", "x\nlast\n");
    add("stops its supervisor", "kill -STOP $PPID; echo x; exec sleep 999", "x\n");
    add("twenty generations",
        "f() { case $1 in 20) echo x; sleep 999;; esac; (f $(($1+1)); :); }; f 0", "x\n");
    add("forks without end", "'" + us + "' --fork", "x\n");
}

}  // namespace

class RunningTest : public QObject {
    Q_OBJECT
  private slots:
    void initTestCase() { qputenv(Mark(), "1"); }
    void cleanup() {
        for (const int process : MarkedProcesses()) kill(process, SIGKILL);
    }

    void Output_data() {
        QTest::addColumn<QByteArray>("command");
        QTest::addColumn<QString>("pattern");
        const auto row = [](const char* name, const QByteArray& command, const char* pattern) {
            QTest::newRow(name) << command << pattern;
        };
        row("line ends", R"(printf 'a\r\nb\r'; sleep .1; printf '\nc')", "a\nb\nc");
        row("CR at the end", R"(printf 'a\r')", "a\n");
        row("control characters", R"(printf 'a\0b\004\t\033c')", "a.b\4\t\33c");
        row("no UTF-8", R"(printf '\377a\343\201'; sleep .1; printf 'b\343')",
            "\uFFFDa\uFFFD+b\uFFFD");
        row("characters in pieces",
            R"(for b in 346 227 '245\346' 234 254; do printf \\$b; sleep .02; done)", "日本");
        row("output and error, killed", "for i in 1 2; do echo o$i; echo e$i >&2; done; kill -9 $$",
            "o1\ne1\no2\ne2\n");
        row("nothing", "", "");
        row("several lines", "echo a\n\necho b # c\n", "a\nb\n");
        row("NUL", QByteArray("echo a\0b", 8), "sh: .*NUL.*\n");
        row("200 KB", "echo $#; echo '  y" + QByteArray(" x").repeated(99'999) + "' | wc -c",
            "0\n200002\n");
        row("no tool", "-vv -cd ck", "sh: .*-vv: .*not found\n");
        row("terminal", "cat; read line || echo $TERM; test -t 2 && echo own >/dev/tty",
            "dumb\nown\n");
        row("leaves a process", "(trap '' HUP; exec sleep 1000) & sleep .1; echo x", "x\n");
        row("leaves endless output", "(trap '' HUP; exec yes) & sleep .1", "[y\n]*");
        row("no descriptors", "ls -l /proc/self/fd | grep -c -e socket -e /dev/ptmx", "0\n");
    }
    void Output() {
        QFETCH(QByteArray, command);
        QFETCH(QString, pattern);
        const Runner runner;
        runner.Start(command);
        QCOMPARE(runner.Output(), "");
        QVERIFY(!runner.window.StartPB().Enabled());
        QVERIFY(runner.window.PortPM().Enabled() && runner.window.SelectPB().Enabled());
        QVERIFY(runner.Ended());
        const QRegularExpression whole(QRegularExpression::anchoredPattern(pattern));
        const QString output = runner.Output();
        QVERIFY2(whole.match(output).hasMatch(), qPrintable(output.left(999)));
    }

    void OutputUnreadAtTheEnd() {
        const Runner runner;
        runner.Start("yes '' | head -c 9000; printf end");
        siginfo_t ended{};
        waitid(P_ALL, 0, &ended, WEXITED | WNOWAIT);
        QVERIFY(runner.Ended());
        QCOMPARE(runner.Output(), QString(9000, '\n') + "end");
    }

    // Whatever the program was started from.
    void SignalsOfATool() {
        const Runner runner;
        for (const int ignored : {SIGPIPE, SIGINT, SIGHUP, SIGCHLD}) signal(ignored, SIG_IGN);
        sigset_t blocked, before;
        sigemptyset(&blocked);
        sigaddset(&blocked, SIGTERM);
        sigprocmask(SIG_BLOCK, &blocked, &before);
        runner.Start("cat /proc/self/status | grep -E 'Sig(Blk|Ign|Cgt)' | tr -d '\\n[:alpha:]'");
        const bool ended = runner.Ended();
        sigprocmask(SIG_SETMASK, &before, nullptr);
        for (const int ignored : {SIGPIPE, SIGINT, SIGHUP, SIGCHLD}) signal(ignored, SIG_DFL);
        QVERIFY(ended);
        QCOMPARE(runner.Output(), QString(":\t0000000000000000").repeated(3));
    }

    void Flood() {
        const Runner runner;
        runner.Start("seq 1 100000; exec yes");
        const auto* output = runner.Widget<QPlainTextEdit>("rEF");
        QTRY_VERIFY_WITH_TIMEOUT(output->blockCount() > 100'001, 20'000);
        QTest::keyClicks(runner.Widget<QWidget>("ResetEF"), "zz");
        QVERIFY(runner.window.InstallEF().Text().find("-cd ckzz ") != std::string::npos);
        PressStop();
        QVERIFY(runner.Ended());
        QString counted;
        for (int i = 1; i <= 100'000; ++i) counted += QString::number(i) + '\n';
        QVERIFY(runner.Output().startsWith(counted));
    }

    void Stop_data() {
        QTest::addColumn<QByteArray>("command");
        QTest::addColumn<QString>("output");
        AddRuns([](const char* name, const QByteArray& command, const char* output) {
            QTest::newRow(name) << command << output;
        });
    }
    void Stop() {
        QFETCH(QByteArray, command);
        QFETCH(QString, output);
        const Runner runner;
        runner.Start(command);
        QTRY_VERIFY(runner.Output().contains('\n'));
        runner.window.esptool().Execute("echo second");
        QVERIFY(!MarkedProcesses().isEmpty());
        for (int press = 0; press < 2; ++press) PressStop();
        QVERIFY(runner.Ended());
        QCOMPARE(MarkedProcesses(), QList<int>());
        QCOMPARE(runner.Output(), output);
        PressStop();  // with no run it does nothing
    }

    void EndOfTheProgram_data() {
        QTest::addColumn<QByteArray>("command");
        QTest::addColumn<bool>("killed");
        AddRuns([](const char* name, const QByteArray& command, const char*) {
            QTest::addRow("%s; closed", name) << command << false;
            QTest::addRow("%s; killed", name) << command << true;
        });
    }
    void EndOfTheProgram() {
        QFETCH(QByteArray, command);
        QFETCH(bool, killed);
        QProcess program;
        program.start(QApplication::applicationFilePath(),
                      {"--program", command, killed ? "kill" : "close"});
        QVERIFY(program.waitForFinished(20'000));
        if (killed) QTRY_COMPARE(MarkedProcesses(), QList<int>());
        QCOMPARE(MarkedProcesses(), QList<int>());
        QCOMPARE(program.exitCode(), killed ? SIGKILL : 0);
    }

    // Ctrl+. works wherever the focus is, an open cell or an open list included. Without another
    // key it comes back to Start.
    void StopWithTheFocusOn_data() {
        QTest::addColumn<QByteArray>("control");
        for (const char* control : {"StartPB", "InstallEF", "PortPM", "ulb", "ConnectPB"})
            QTest::newRow(control) << QByteArray(control);
    }
    void StopWithTheFocusOn() {
        QFETCH(QByteArray, control);
        const Runner runner;
        runner.Start("echo x; exec sleep 999");
        QTRY_VERIFY(runner.Output().contains('\n'));
        const bool start = control == "StartPB";
        if (!start) {
            runner.Widget<QWidget>(control)->setFocus();
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Down);
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Space);
        }
        PressStop();
        QVERIFY(runner.Ended());
        QCOMPARE(QApplication::focusWidget() == runner.Widget<QWidget>("StartPB"), start);
    }

    // A debugger that holds a process at its exit keeps it from being killed.
    void CannotBeKilled() {
        auto runner = std::make_unique<Runner>();
        std::array<QString, 2> held;
        for (QString& process : held) {
            runner->Start("echo $$ $PPID; exec sleep 999");
            QTRY_VERIFY(runner->Output().contains('\n'));
            process = runner->Output().section(' ', 0, 0);
            QCOMPARE(ptrace(PTRACE_SEIZE, process.toInt(), nullptr, PTRACE_O_TRACEEXIT), 0);
            if (&process == &held.back()) break;
            PressStop();
            QVERIFY(runner->Ended());
            const QString line = "\nprocess " + process + " couldn't be ended\n";
            QVERIFY2(runner->Output().endsWith(line), qPrintable(runner->Output()));
        }
        const auto supervisor = static_cast<id_t>(runner->Output().section(' ', 1).toInt());
        runner.reset();
        // The window hasn't waited for the supervisor, which is still at it.
        siginfo_t ended{};
        QCOMPARE(waitid(P_PID, supervisor, &ended, WEXITED | WNOHANG | WNOWAIT), 0);
        QCOMPARE(ended.si_pid, 0);
        for (const QString& process : held)
            ptrace(PTRACE_DETACH, process.toInt(), nullptr, nullptr);
        QCOMPARE(waitid(P_PID, supervisor, &ended, WEXITED), 0);
    }
};

int main(int count, char** arguments) {
    const std::string_view mode = count > 1 ? arguments[1] : "";
    if (mode == "--fork") ForkWithoutEnd();
    if (count == 4 && mode == "--program")
        return ProgramWithRun(arguments[2], std::string_view(arguments[3]) == "kill");
    return RunTest<RunningTest>(count, arguments);
}
#include "RunTest.moc"
