#include "platform/run/private/SupervisorProcess.h"

#include <signal.h>
#include <sys/select.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>

#include "platform/run/private/Processes.h"

namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

constexpr auto kGraceWithoutProgram = 300ms;  // between SIGTERM and SIGKILL
constexpr auto kGiveUpAfter = 1s;             // after the first SIGKILL
constexpr auto kKillAgainAfter = 10ms;        // for processes that have been forked meanwhile

constexpr auto kNever = Clock::time_point::max();

void Report(int program, pid_t report) {
    if (write(program, &report, sizeof report) < 0) return;  // the program is gone
}

class SupervisorProcess {
  public:
    SupervisorProcess(int program, pid_t shell) : mProgram(program), mShell(shell) {}

    [[noreturn]] void Run() {
        for (;;) {
            const bool anyone = Reap();
            if (!anyone) EndSupervisor(mProgram);
            if (!mShellLives && !mReportedItsEnd) {
                mReportedItsEnd = true;
                Report(mProgram, kShellEnded);
            }
            const auto now = Clock::now();
            if (now >= mGiveUpAt) {
                ReportSurvivors();
                EndSupervisor(mProgram);
            }
            if (now >= mKillAt) {
                if (mGiveUpAt == kNever) mGiveUpAt = now + kGiveUpAfter;
                Signal(SIGKILL);
            }
            if (Wait(mKillAt > now ? mKillAt : now + kKillAgainAfter)) HandleOrder();
        }
    }

  private:
    // Reaps zombies. Returns true while the run has a process.
    bool Reap() {
        pid_t dead = 0;
        while ((dead = waitpid(-1, nullptr, WNOHANG)) > 0)
            if (dead == mShell) mShellLives = false;
#ifdef __linux__
        return dead == 0;
#else
        return dead == 0 || kill(-mShell, 0) == 0;  // or others of its process group
#endif
    }

    // SIGCONT lets stopped processes receive the signal.
    void Signal(int signal) const {
        ProcessList processes;
        AddDescendants(processes);
        // Without a list of descendants, as on macOS, the shell's process group is used.
        if (processes.Count() == 0) processes.Add(-mShell);
        for (const pid_t process : processes) {
            kill(process, signal);
            kill(process, SIGCONT);
        }
    }

    void ReportSurvivors() const {
        ProcessList survivors;
        AddChildren(getpid(), survivors);
        if (survivors.Count() == 0) survivors.Add(mShell);
        for (const pid_t process : survivors) Report(mProgram, process);
    }

    // Waits until that time or until a child ends. Returns true if an order or the end of file can
    // be read.
    bool Wait(Clock::time_point until) const {
        using std::chrono::duration_cast;
        const auto left = std::max(until - Clock::now(), Clock::duration(0));
        const auto seconds = duration_cast<std::chrono::seconds>(left);
        timespec time{};
        time.tv_sec = seconds.count();
        time.tv_nsec = duration_cast<std::chrono::nanoseconds>(left - seconds).count();
        sigset_t blocked;
        sigfillset(&blocked);
        sigdelset(&blocked, SIGCHLD);
        fd_set readable;
        FD_ZERO(&readable);
        if (!mProgramGone) FD_SET(mProgram, &readable);
        return pselect(mProgram + 1, &readable, nullptr, nullptr, until == kNever ? nullptr : &time,
                       &blocked) > 0;
    }

    void HandleOrder() {
        char order = 0;
        const auto count = read(mProgram, &order, 1);
        if (count < 0 && errno == EINTR) return;
        const bool first = !mEnding;
        mEnding = true;
        if (count <= 0) {
            mProgramGone = true;
            mKillAt = std::min(mKillAt, Clock::now() + kGraceWithoutProgram);
        } else if (order == static_cast<char>(Order::Kill)) {
            mKillAt = Clock::now();
        } else if (order == static_cast<char>(Order::LetGo)) {
            EndSupervisor(mProgram);
        }
        if (first) Signal(SIGTERM);
    }

    const int mProgram;
    const pid_t mShell;
    bool mShellLives = true, mReportedItsEnd = false, mEnding = false, mProgramGone = false;
    Clock::time_point mKillAt = kNever, mGiveUpAt = kNever;
};

}  // namespace

void Supervise(int program, pid_t shell) { SupervisorProcess(program, shell).Run(); }

void WakeOnChildEnd() {
    struct sigaction wake = {};
    wake.sa_handler = [](int) {};
    sigaction(SIGCHLD, &wake, nullptr);
}

void EndSupervisor(int program) {
    Report(program, kDone);
    _exit(0);
}
