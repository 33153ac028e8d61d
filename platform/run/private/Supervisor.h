// The program's side of a run's supervisor (see Supervise.h).
#pragma once

#include <sys/types.h>

#include <chrono>
#include <string_view>
#include <vector>

#include "platform/run/private/Supervise.h"

class Terminal;

class Supervisor {
  public:
    // Starts the command. On failure errno says why.
    Supervisor(std::string_view command, const Terminal& terminal);
    Supervisor(const Supervisor&) = delete;
    Supervisor& operator=(const Supervisor&) = delete;
    // The supervisor then ends whatever is left of the run.
    ~Supervisor();

    bool Started() const { return mProcess > 0; }
    pid_t Process() const { return mProcess; }
    // Readable when there is something for Hear.
    int Descriptor() const { return mSocket; }

    void Give(Order order) const;

    // Takes what the supervisor has to tell, without waiting. Whether the run is over.
    bool Hear();

    // Whether the shell has ended, as far as heard. Others of the run may be left.
    bool ShellEnded() const { return mShellEnded; }

    // The processes that it couldn't kill, as far as heard.
    const std::vector<pid_t>& Unkilled() const { return mUnkilled; }

    // Ends the run as the end of the program would. Waits until it is over, but at most so long.
    void End(std::chrono::milliseconds atMost);

  private:
    int mSocket = -1;
    pid_t mProcess = -1;
    bool mShellEnded = false, mOver = false;
    std::vector<pid_t> mUnkilled;
};
