// The run of a command: its output, its end, and the processes that remain.
#include <fcntl.h>
#include <signal.h>
#include <sys/ptrace.h>
#include <sys/wait.h>

#include <QProcess>

#include "Testing.h"

namespace {

// Every process that a run starts has this in its environment, even if it has left the session.
// Zombies have no environment and aren't counted.
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

// Runs the program from start to end. It starts the command at once. When the first output comes,
// it closes its window or kills itself.
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

// Commands that react in different ways when they are stopped, and all that they print.
void AddRuns(const std::function<void(const char*, QByteArray, QString)>& add) {
    add("prints at TERM", "trap 'echo last; exit' TERM; echo x; sleep 999 & wait", "x\nlast\n");
    add("ignores TERM and HUP", "trap '' TERM HUP; sleep 999 & echo x; cat <&1; wait", "x\n");
    add("a daemon, and a child in a session",
        "setsid sh -c 'trap \"\" TERM; sleep 999 &'; "
        "setsid sh -c 'trap \"\" TERM; echo x; sleep 999; :' & wait",
        "x\n");
    add("stopped by STOP", "trap 'echo last; exit' TERM; echo x; kill -STOP $$", "x\nlast\n");
    add("stops its supervisor", "kill -STOP $PPID; echo x; exec sleep 999", "x\n");
    // Twenty chains of processes, each of which starts the next in a session of its own and ends.
    // Each ends by itself after 500 generations, in case the program fails to end it.
    add("forks without end",
        "export n=0 f='n=$((n+1)); [ $n -gt 500 ] || setsid sh -c \"$f\" &'; "
        "for i in $(seq 20); do sh -c \"$f\"; done; echo x; cat <&1",
        "x\n");
}

}  // namespace

class RunTest : public QObject {
    Q_OBJECT
  private slots:
    void initTestCase() {
        qputenv(Mark(), "1");
        qunsetenv("NO_COLOR");
    }
    void cleanup() {
        for (const int process : MarkedProcesses()) kill(process, SIGKILL);
    }

    void Output_data() {
        const auto row = Columns<QByteArray, QString>("command", "pattern");
        row("not UTF-8", R"(printf '\377a\343'; sleep .1; printf 'b\343')", "\uFFFDa\uFFFDb\uFFFD");
        row("output and error, killed", "for i in 1 2; do echo o$i; echo e$i >&2; done; kill -9 $$",
            "o1\ne1\no2\ne2\n");
        row("an empty command", "", "");
        row("several lines", "echo a\n\necho b # c\n", "a\nb\n");
        row("a NUL in the command", QByteArray("echo a\0b", 8), "sh: .*NUL.*\n");
        row("200 KB long", "echo '" + QByteArray(200'000, 'x') + "' | wc -c", "200001\n");
        row("no tool", "-vv -cd ck", "sh: .*-vv: .*not found\n");
        row("a terminal, and no input",
            "cat; read line || echo $TERM $NO_COLOR; test -t 2 && echo own >/dev/tty",
            "dumb 1\nown\n");
        row("leaves endless output", "(trap '' HUP; exec yes) & sleep .1", "(y\n)++y?");
        row("inherits no descriptors", "ls -l /proc/self/fd | grep -c -e socket -e /dev/ptmx",
            "0\n");
    }
    void Output() {
        const auto [command, pattern] = Row<QByteArray, QString>("command", "pattern");
        const OpenedWindow opened;
        opened.Start(command.toStdString());
        QCOMPARE(opened.Shown(), "");
        QVERIFY(!opened.window.StartPB().Enabled() && opened.window.SelectPB().Enabled());
        const QString output = opened.Output();
        QVERIFY2(Matches(output, pattern), qPrintable(output.left(999)));
    }

    void OutputUnreadAtTheEnd() {
        const OpenedWindow opened;
        opened.Start("yes '' | head -c 9000; printf end");
        siginfo_t ended{};
        waitid(P_ALL, 0, &ended, WEXITED | WNOWAIT);
        QCOMPARE(opened.Output(), QString(9000, '\n') + "end");
    }

    // A tool gets the default ones, even if the program was started with some ignored or blocked.
    void SignalsOfATool() {
        const OpenedWindow opened;
        for (const int ignored : {SIGPIPE, SIGINT, SIGHUP, SIGCHLD}) signal(ignored, SIG_IGN);
        sigset_t all, before;
        sigfillset(&all);
        sigprocmask(SIG_BLOCK, &all, &before);
        const QString output =
            opened.Run("cat /proc/self/status | grep -E 'Sig(Blk|Ign|Cgt)' | tr -d '\\n[:alpha:]'");
        sigprocmask(SIG_SETMASK, &before, nullptr);
        for (const int ignored : {SIGPIPE, SIGINT, SIGHUP, SIGCHLD}) signal(ignored, SIG_DFL);
        QCOMPARE(output, QString(":\t0000000000000000").repeated(3));
    }

    void Flood() {
        const OpenedWindow opened;
        opened.Start("seq 1 100000; exec yes");
        QTRY_VERIFY_WITH_TIMEOUT(opened.Shown().contains('y'), 20'000);
        QTest::keyClicks(opened.Widget<QWidget>("ResetEF"), "zz");
        QVERIFY(opened.window.InstallEF().Text().find("-cd ckzz ") != std::string::npos);
        PressStop();
        QString counted;
        for (int i = 1; i <= 100'000; ++i) counted += QString::number(i) + '\n';
        QVERIFY(opened.Output().startsWith(counted));
    }

    void Stop_data() { AddRuns(Columns<QByteArray, QString>("command", "output")); }
    void Stop() {
        const auto [command, output] = Row<QByteArray, QString>("command", "output");
        const OpenedWindow opened;
        opened.Start(command.toStdString());
        QTRY_VERIFY(opened.Shown().contains('\n'));
        QVERIFY(!MarkedProcesses().isEmpty());
        for (int press = 0; press < 2; ++press) PressStop();
        QCOMPARE(opened.Output(), output);
        QCOMPARE(MarkedProcesses(), QList<int>());
        PressStop();  // with no run it does nothing
    }

    void EndOfTheProgram_data() {
        const auto row = Columns<QByteArray, bool>("command", "killed");
        AddRuns([row](const QByteArray& name, const QByteArray& command, const QString&) {
            row(name + "; closed", command, false);
            row(name + "; killed", command, true);
        });
    }
    void EndOfTheProgram() {
        const auto [command, killed] = Row<QByteArray, bool>("command", "killed");
        QProcess program;
        program.start(QApplication::applicationFilePath(),
                      {"--program", command, killed ? "kill" : "close"});
        QVERIFY(program.waitForFinished(20'000));
        if (killed) QTRY_COMPARE(MarkedProcesses(), QList<int>());
        QCOMPARE(MarkedProcesses(), QList<int>());
        QCOMPARE(program.exitCode(), killed ? SIGKILL : 0);
    }

    // As the memory killer may do, though it prefers the tool. No process of the run goes on, also
    // where the program was started with SIGCHLD ignored.
    void SupervisorIsKilled() {
        const auto restore = qScopeGuard([] { signal(SIGCHLD, SIG_DFL); });
        for (const auto handler : {SIG_DFL, SIG_IGN}) {
            signal(SIGCHLD, handler);
            const OpenedWindow opened;
            opened.Start(
                "cat /proc/$$/oom_score_adj /proc/$PPID/oom_score_adj; echo $PPID; "
                "setsid sh -c 'trap \"\" TERM HUP; sleep 999 & wait' & wait");
            QTRY_COMPARE(opened.Shown().count('\n'), 3);
            QTRY_COMPARE(MarkedProcesses().size(), 3);
            const QStringList words = opened.Shown().split('\n');
            QVERIFY(words[0].toInt() > words[1].toInt());
            kill(words[2].toInt(), SIGKILL);
            QVERIFY(opened.Output().endsWith("quillstone-run was killed, which ended the run\n"));
            QCOMPARE(MarkedProcesses(), QList<int>());
            QVERIFY(waitpid(-1, nullptr, WNOHANG) < 0);  // none is left as a zombie
        }
    }

    // Ctrl+. works wherever the focus is, also in an open cell or an open list. If the user pressed
    // no other key, the focus comes back to Start.
    void StopWithTheFocusOn() {
        for (const char* control : {"StartPB", "InstallEF", "PortPM", "ulb"}) {
            const OpenedWindow opened;
            opened.Start("echo x; exec sleep 999");
            QTRY_VERIFY(opened.Shown().contains('\n'));
            const bool start = control == QString("StartPB");
            if (!start) {
                opened.Widget<QWidget>(control)->setFocus();
                Press({Qt::Key_Down, Qt::Key_Space});
            }
            PressStop();
            QVERIFY2(opened.Output() == "x\n" && start == (opened.Focus() == "StartPB"), control);
        }
    }

    // A process that a debugger holds at its exit can't be killed. Neither the run nor the window
    // waits for it.
    void CannotBeKilled() {
        auto opened = std::make_unique<OpenedWindow>();
        QList<int> held;
        const auto start = [&] {
            opened->Start("echo $$; exec sleep 999");
            if (QTest::qWaitFor([&] { return opened->Shown().contains('\n'); }))
                held += opened->Shown().toInt();
            return ptrace(PTRACE_SEIZE, held.last(), nullptr, PTRACE_O_TRACEEXIT) == 0;
        };
        QVERIFY(start());
        PressStop();
        QCOMPARE(opened->Output().section('\n', 1),
                 QString("process %1 couldn't be ended\n").arg(held[0]));
        QVERIFY(start());
        opened.reset();
        for (const int process : held) ptrace(PTRACE_DETACH, process, nullptr, nullptr);
    }
};

int main(int count, char** arguments) {
    if (count == 4 && std::string_view(arguments[1]) == "--program")
        return ProgramWithRun(arguments[2], std::string_view(arguments[3]) == "kill");
    return WithProgram([=] {
        RunTest test;
        return QTest::qExec(&test, count, arguments);
    });
}
#include "RunTest.moc"
