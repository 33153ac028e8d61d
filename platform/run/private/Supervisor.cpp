#include "platform/run/private/Supervisor.h"

#include <poll.h>
#include <signal.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>

#include "platform/run/private/Spawn.h"

#ifndef MSG_NOSIGNAL
#define MSG_NOSIGNAL 0
#endif

Supervisor::Supervisor(std::string_view command, const Terminal& terminal)
    : mProcess(Spawn(command, terminal, mSocket)) {
#ifdef SO_NOSIGPIPE
    const int on = 1;
    if (Started()) setsockopt(mSocket, SOL_SOCKET, SO_NOSIGPIPE, &on, sizeof on);
#endif
}

Supervisor::~Supervisor() {
    if (!Started()) return;
    close(mSocket);
    // A supervisor that has closed its end is about to exit.
    waitpid(mProcess, nullptr, mOver ? 0 : WNOHANG);
}

void Supervisor::Give(Order order) const {
    if (!Started()) return;
    kill(mProcess, SIGCONT);  // the run may have stopped it
    const char byte = static_cast<char>(order);
    send(mSocket, &byte, 1, MSG_NOSIGNAL);  // in vain where the run has just ended
}

bool Supervisor::Hear() {
    pid_t process = 0;
    ssize_t count = 0;
    while ((count = read(mSocket, &process, sizeof process)) == sizeof process) {
        if (process == kShellEnded)
            mShellEnded = true;
        else
            mUnkilled.push_back(process);
    }
    mOver = mOver || count == 0 || (count < 0 && errno != EAGAIN && errno != EINTR);
    return mOver;
}

void Supervisor::End(std::chrono::milliseconds atMost) {
    if (!Started()) return;
    using Clock = std::chrono::steady_clock;
    kill(mProcess, SIGCONT);
    shutdown(mSocket, SHUT_WR);
    const auto until = Clock::now() + atMost;
    while (!Hear() && Clock::now() < until) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(until - Clock::now());
        pollfd readable{.fd = mSocket, .events = POLLIN, .revents = 0};
        poll(&readable, 1, static_cast<int>(left.count()));
    }
}
