// The run of a command: its output, its end, and what the system has left of it afterwards.
#include <signal.h>
#include <sys/wait.h>

#include <QPlainTextEdit>
#include <QProcess>
#include <QRegularExpression>

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

}  // namespace

class RunningTest : public QObject {
    Q_OBJECT
  private slots:
    void initTestCase() { qputenv(Mark(), "1"); }
    void cleanup() {
        for (const int process : MarkedProcesses()) kill(process, SIGKILL);
    }

    void Output() {
        const std::pair<QByteArray, const char*> rows[] = {
            {R"(printf 'a\r\nb\r'; sleep .1; printf '\nc')", "a\nb\nc"},
            {R"(printf 'a\r')", "a\n"},
            {R"(printf 'a\0b\004\t\033c')", "a.b\4\t\33c"},
            {R"(printf '\377a\343\201'; sleep .1; printf 'b\343')", "\uFFFDa\uFFFD+b\uFFFD"},
            {R"(for b in 346 227 '245\346' 234 254; do printf \\$b; sleep .02; done)", "日本"},
            {"for i in 1 2; do echo o$i; echo e$i >&2; done; kill -9 $$", "o1\ne1\no2\ne2\n"},
            {"", ""},
            {"echo a\n\necho b # c\n", "a\nb\n"},
            {QByteArray("echo a\0b", 8), "sh: .*NUL.*\n"},
            {"echo $#; echo '  y" + QByteArray(" x").repeated(99'999) + "' | wc -c", "0\n200002\n"},
            {"-vv -cd ck", "sh: .*-vv: .*not found\n"},
            {"cat; read line || echo $TERM; test -t 2 && echo own >/dev/tty", "dumb\nown\n"},
            {"(trap '' HUP; exec sleep 1000) & sleep .1; echo x", "x\n"},
        };
        const Runner runner;
        for (const auto& [command, pattern] : rows) {
            runner.Start(command);
            QCOMPARE(runner.Output(), "");
            QVERIFY(!runner.window.StartPB().Enabled());
            QVERIFY(runner.window.PortPM().Enabled() && runner.window.SelectPB().Enabled());
            runner.Click("ResetEF");
            QVERIFY2(runner.Ended(), command.left(99));
            const QRegularExpression whole(QRegularExpression::anchoredPattern(pattern));
            const QString output = runner.Output();
            QVERIFY2(whole.match(output).hasMatch(), command.left(99) + qPrintable(output));
            QCOMPARE(QApplication::focusWidget(), runner.Widget<QWidget>("ResetEF"));
        }
    }

    void OutputUnreadAtTheEnd() {
        const Runner runner;
        runner.Start("yes '' | head -c 9000; printf end");
        siginfo_t ended{};
        waitid(P_ALL, 0, &ended, WEXITED | WNOWAIT);
        QVERIFY(runner.Ended());
        QCOMPARE(runner.Output(), QString(9000, '\n') + "end");
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

    // Each is stopped while another control has the focus, an open cell or an open list included.
    void Stop() {
        const Runner runner;
        const auto stops = [&](const char* focus, const char* command, const QString& output) {
            runner.Start(command);
            QTRY_VERIFY(runner.Output().contains('\n'));
            runner.window.esptool().Execute("echo second");
            QVERIFY(!MarkedProcesses().isEmpty());
            runner.Widget<QWidget>(focus)->setFocus();
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Down);
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Space);
            for (int press = 0; press < 2; ++press) PressStop();
            QVERIFY(runner.Ended());
            QCOMPARE(MarkedProcesses(), QList<int>());
            QCOMPARE(runner.Output(), output);
            PressStop();  // with no run it does nothing
        };
        stops("ResetEF", "sleep 999 & (echo x; exec sleep 999) | sed s/^/=/", "=x\n");
        stops("InstallEF", "trap 'echo last; exit' TERM; echo x; sleep 999 & wait", "x\nlast\n");
        stops("PortPM", "trap '' TERM HUP; echo x; while :; do sleep 999; done", "x\n");
        stops("ulb", "setsid sh -c 'trap \"\" TERM; echo x; sleep 999; :' & wait", "x\n");
        stops("ConnectPB", "echo x; kill -STOP $$", "x\n");
    }

    void EndOfTheProgram() {
        const auto ends = [](const QString& ending, const QString& command) {
            QProcess program;
            program.start(QApplication::applicationFilePath(), {"--program", command, ending});
            QVERIFY(program.waitForFinished(20'000));
            if (ending == "kill") QTRY_COMPARE(MarkedProcesses(), QList<int>());
            QCOMPARE(MarkedProcesses(), QList<int>());
            QCOMPARE(program.exitCode(), ending == "kill" ? SIGKILL : 0);
        };
        ends("close", "trap '' HUP TERM; sleep 999 & echo x; cat <&1; wait");
        ends("close", "sleep 999 & setsid sleep 999 & echo x; cat <&1");
        ends("kill", "sleep 999 & echo x; sleep 999 | cat; :");
    }
};

int main(int count, char** arguments) {
    if (count == 4 && std::string_view(arguments[1]) == "--program")
        return ProgramWithRun(arguments[2], std::string_view(arguments[3]) == "kill");
    return RunTest<RunningTest>(count, arguments);
}
#include "RunTest.moc"
