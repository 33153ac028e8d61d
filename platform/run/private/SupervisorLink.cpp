#include "platform/run/private/SupervisorLink.h"

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

SupervisorLink::SupervisorLink(std::string_view command, const Terminal& terminal)
    : mOtherChildren(Children()) {
    BeChildSubreaper(true);
    mProcess = Spawn(command, terminal, mSocket);
    const int reason = errno;
    mEnded = mDone = !Started();
#ifdef SO_NOSIGPIPE
    const int on = 1;
    if (Started()) setsockopt(mSocket, SOL_SOCKET, SO_NOSIGPIPE, &on, sizeof on);
#endif
    // After Spawn, so that the run has the limit that the user has set. The kernel ignores a limit
    // of 0 when it pipes cores to a handler; 1 disables that too.
    getrlimit(RLIMIT_CORE, &mCoreLimit);
    rlimit none = mCoreLimit;
    none.rlim_cur = std::min<rlim_t>(1, none.rlim_max);
    setrlimit(RLIMIT_CORE, &none);
    errno = reason;
}

SupervisorLink::~SupervisorLink() {
    setrlimit(RLIMIT_CORE, &mCoreLimit);
    BeChildSubreaper(false);
    if (!Started()) return;
    close(mSocket);
    if (!mEnded) waitpid(mProcess, nullptr, WNOHANG);
}

void SupervisorLink::SendOrder(Order order) const {
    if (mEnded) return;
    // The processes in the background then become children of the system's reaper.
    if (order == Order::LetGo) BeChildSubreaper(false);
    kill(mProcess, SIGCONT);  // the run may have stopped it
    const char byte = static_cast<char>(order);
    send(mSocket, &byte, 1, MSG_NOSIGNAL);  // fails if the run has just ended
}

bool SupervisorLink::PollEnded() {
    if (mEnded) return true;
    pid_t process = 0;
    ssize_t count = 0;
    while ((count = read(mSocket, &process, sizeof process)) == sizeof process) {
        if (process == kShellEnded)
            mShellEnded = true;
        else if (process == kDone)
            mDone = true;
        else
            mUnkilled.push_back(process);
    }
    mEnded = count == 0 || (count < 0 && errno != EAGAIN && errno != EINTR);
    // Doesn't block for long: the supervisor closes its end only when it exits.
    if (mEnded) waitpid(mProcess, nullptr, 0);
    return mEnded;
}

ProcessList SupervisorLink::ChildrenOfRun() const {
    ProcessList run;
    for (const pid_t child : Children())
        if (std::ranges::find(mOtherChildren, child) == mOtherChildren.end()) run.Add(child);
    return run;
}

bool SupervisorLink::KillRun() {
    ProcessList run = ChildrenOfRun();
    AddDescendantsOfListed(run);
    for (const pid_t process : run) {
        kill(process, SIGKILL);
        waitpid(process, nullptr, WNOHANG);
    }
    return run.Count() == 0;
}

void SupervisorLink::NoteSurvivors() {
    const ProcessList survivors = ChildrenOfRun();
    mUnkilled.assign(survivors.begin(), survivors.end());
}

void SupervisorLink::End(std::chrono::milliseconds atMost) {
    using Clock = std::chrono::steady_clock;
    const auto until = Clock::now() + atMost;
    if (!mEnded) {
        kill(mProcess, SIGCONT);
        shutdown(mSocket, SHUT_WR);
    }
    while (!PollEnded()) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(until - Clock::now());
        if (left.count() <= 0) return;
        pollfd readable{.fd = mSocket, .events = POLLIN, .revents = 0};
        poll(&readable, 1, static_cast<int>(left.count()));
    }
    while (WasKilled() && !KillRun() && Clock::now() < until) poll(nullptr, 0, 10);
}
