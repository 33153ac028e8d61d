#include "platform/run/private/Supervisor.h"

#include <poll.h>
#include <signal.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>
#ifdef __linux__
#include <sys/prctl.h>
#endif

#include <algorithm>
#include <cerrno>

#include "platform/run/private/Spawn.h"

#ifndef MSG_NOSIGNAL
#define MSG_NOSIGNAL 0
#endif

namespace {

void BeChildSubreaper([[maybe_unused]] bool on) {
#ifdef __linux__
    prctl(PR_SET_CHILD_SUBREAPER, on ? 1 : 0);
#endif
}

std::vector<pid_t> Children() {
    ProcessList children;
    AddChildren(getpid(), children);
    return {children.begin(), children.end()};
}

}  // namespace

Supervisor::Supervisor(std::string_view command, const Terminal& terminal)
    : mOtherChildren(Children()) {
    BeChildSubreaper(true);
    mProcess = Spawn(command, terminal, mSocket);
    const int reason = errno;
    mOver = !Started();
#ifdef SO_NOSIGPIPE
    const int on = 1;
    if (Started()) setsockopt(mSocket, SOL_SOCKET, SO_NOSIGPIPE, &on, sizeof on);
#endif
    // After Spawn, so that the run has the limit that the user has set. With 0 a program that the
    // kernel hands the core to would still get it.
    getrlimit(RLIMIT_CORE, &mCoreLimit);
    rlimit none = mCoreLimit;
    none.rlim_cur = std::min<rlim_t>(1, none.rlim_max);
    setrlimit(RLIMIT_CORE, &none);
    errno = reason;
}

Supervisor::~Supervisor() {
    setrlimit(RLIMIT_CORE, &mCoreLimit);
    BeChildSubreaper(false);
    if (!Started()) return;
    close(mSocket);
    if (!mOver) waitpid(mProcess, nullptr, WNOHANG);
}

void Supervisor::Give(Order order) const {
    if (mOver) return;
    // What the command has left in the background then becomes a child of the system's reaper.
    if (order == Order::LetGo) BeChildSubreaper(false);
    kill(mProcess, SIGCONT);  // the run may have stopped it
    const char byte = static_cast<char>(order);
    send(mSocket, &byte, 1, MSG_NOSIGNAL);  // fails if the run has just ended
}

bool Supervisor::Hear() {
    if (mOver) return true;
    pid_t process = 0;
    ssize_t count = 0;
    while ((count = read(mSocket, &process, sizeof process)) == sizeof process) {
        if (process == kShellEnded)
            mShellEnded = true;
        else
            mUnkilled.push_back(process);
    }
    mOver = count == 0 || (count < 0 && errno != EAGAIN && errno != EINTR);
    int status = 0;
    // Doesn't wait for long: a supervisor closes its end when it exits.
    if (mOver && waitpid(mProcess, &status, 0) == mProcess) mWasKilled = WIFSIGNALED(status);
    return mOver;
}

ProcessList Supervisor::ChildrenOfRun() const {
    ProcessList run;
    for (const pid_t child : Children())
        if (std::ranges::find(mOtherChildren, child) == mOtherChildren.end()) run.Add(child);
    return run;
}

bool Supervisor::KillRun() {
    ProcessList run = ChildrenOfRun();
    AddDescendantsOfListed(run);
    for (const pid_t process : run) {
        kill(process, SIGKILL);
        waitpid(process, nullptr, WNOHANG);
    }
    return run.Count() == 0;
}

void Supervisor::GiveUp() {
    const ProcessList left = ChildrenOfRun();
    mUnkilled.assign(left.begin(), left.end());
}

void Supervisor::End(std::chrono::milliseconds atMost) {
    using Clock = std::chrono::steady_clock;
    const auto until = Clock::now() + atMost;
    if (!mOver) {
        kill(mProcess, SIGCONT);
        shutdown(mSocket, SHUT_WR);
    }
    while (!Hear()) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(until - Clock::now());
        if (left.count() <= 0) return;
        pollfd readable{.fd = mSocket, .events = POLLIN, .revents = 0};
        poll(&readable, 1, static_cast<int>(left.count()));
    }
    while (mWasKilled && !KillRun() && Clock::now() < until) poll(nullptr, 0, 10);
}
