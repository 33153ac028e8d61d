#include "platform/run/private/Supervise.h"

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

constexpr auto kGraceWithoutProgram = 300ms;  // from the request to end until the kill
constexpr auto kGiveUpAfter = 1s;             // from the first kill
constexpr auto kLookAgainAfter = 10ms;        // for processes that a kill has missed

constexpr auto kNever = Clock::time_point::max();

class Supervision {
  public:
    Supervision(int program, pid_t shell) : mProgram(program), mShell(shell) {}

    [[noreturn]] void Run() {
        for (;;) {
            const bool anyone = Reap();
            if (!anyone) _exit(0);
            if (!mShellLives && !mToldItsEnd) {
                mToldItsEnd = true;
                Tell(kShellEnded);
            }
            const auto now = Clock::now();
            if (now >= mGiveUpAt) {
                TellWhoIsLeft();
                _exit(0);
            }
            if (now >= mKillAt) {
                if (mGiveUpAt == kNever) mGiveUpAt = now + kGiveUpAfter;
                Signal(SIGKILL);
            }
            if (Wait(mKillAt > now ? mKillAt : now + kLookAgainAfter)) Obey();
        }
    }

  private:
    // Reaps zombies. True while a process of the run is left.
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

    void TellWhoIsLeft() const {
        ProcessList left;
        AddChildren(getpid(), left);
        if (left.Count() == 0) left.Add(mShell);
        for (const pid_t process : left) Tell(process);
    }

    void Tell(pid_t report) const {
        if (write(mProgram, &report, sizeof report) < 0) return;  // nobody is there any more
    }

    // Waits until that time or until a child ends. True if there is something to read from the
    // program.
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

    void Obey() {
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
            _exit(0);
        }
        if (first) Signal(SIGTERM);
    }

    const int mProgram;
    const pid_t mShell;
    bool mShellLives = true, mToldItsEnd = false, mEnding = false, mProgramGone = false;
    Clock::time_point mKillAt = kNever, mGiveUpAt = kNever;
};

}  // namespace

void Supervise(int program, pid_t shell) {
    struct sigaction wake = {};
    wake.sa_handler = [](int) {};
    sigaction(SIGCHLD, &wake, nullptr);
    Supervision(program, shell).Run();
}
