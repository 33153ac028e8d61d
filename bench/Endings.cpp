#include "bench/Endings.h"

#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QWidget>
#include <array>
#include <functional>
#include <iostream>

#include "bench/Median.h"
#include "platform/application/Application.h"
#include "platform/qt/ControlWidget.h"
#include "platform/run/private/Processes.h"

// A run of 200 processes that ignore what asks them to end; calls `running` when all are there.
static void RunStubborn(const std::function<void(Shell&)>& running) {
    const auto window = EspWin::Instance();
    window->esptool().DataAvailable = running;
    window->InstallEF().Text(
        "trap '' TERM HUP; i=0; while [ $((i += 1)) -lt 200 ]; do sleep 99 & done; echo; wait");
    window->StartPB_Action(window->StartPB());
}

// Stops a run: the longest turn in milliseconds.
void Stop(const Arguments&) {
    RunStubborn([](Shell& shell) {
        auto* watch = new TurnWatch;
        shell.Completed = [=](Shell&) {
            std::cout << watch->Milliseconds() << std::endl;
            Quit(0);
        };
        shell.Stop();
    });
}

// The same for a window without a run.
void StopBare(const Arguments&) {
    EspWin::Instance();
    QApplication::processEvents();
    auto* watch = new TurnWatch;
    QTimer::singleShot(2100, watch, [=] {
        std::cout << watch->Milliseconds() << std::endl;
        Quit(0);
    });
}

// Closes the window: main prints the time until the program has ended.
static void CloseWindow() {
    QTimer::singleShot(0, qApp, [] {
        SinceClose().start();
        WidgetOf(EspWin::Instance()->StartPB()).window()->close();
    });
}

void Close(const Arguments&) {
    RunStubborn([](Shell&) { CloseWindow(); });
}

void CloseBare(const Arguments&) {
    EspWin::Instance();
    CloseWindow();
}

static std::vector<pid_t> Sleepers(int count) {
    std::vector<pid_t> sleepers;
    for (int i = 0; i < count; ++i) {
        sleepers.push_back(fork());
        if (sleepers.back() == 0) {
            prctl(PR_SET_PDEATHSIG, SIGKILL);
            while (pause() != 0) continue;
        }
    }
    return sleepers;
}

// Microseconds of a look at a run of ten processes, with that many others on the machine.
static double Look(int others) {
    const auto sleepers = Sleepers(others);
    std::array<int, 2> result{};
    double elapsed = 0;
    if (pipe(result.data()) != 0) return 0;
    const pid_t supervisor = fork();
    if (supervisor == 0) {
        Sleepers(10);
        std::vector<double> times;
        for (int look = 0; look < 1000; ++look) {
            QElapsedTimer clock;
            clock.start();
            ProcessList processes;
            AddDescendants(processes);
            times.push_back(processes.Count() == 10 ? MicrosecondsOf(clock) : 1e9);
        }
        elapsed = Median(times);
        _exit(write(result[1], &elapsed, sizeof elapsed) < 0 ? 1 : 0);
    }
    if (read(result[0], &elapsed, sizeof elapsed) < 0) elapsed = 0;
    for (const pid_t process : sleepers) kill(process, SIGKILL);
    while (wait(nullptr) > 0) continue;
    return elapsed;
}

void Looks(const Arguments&) {
    std::cout << Look(1000) << ' ' << Look(20) << std::endl;
    Quit(0);
}
