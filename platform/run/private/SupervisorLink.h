// The program's side of a run's supervisor (see SupervisorProcess.h). Only one exists at a time.
//
// While a run lasts, this process is a child subreaper: if the supervisor is killed, the run's
// processes become children of this process, which can then kill them. This process also leaves no
// core file, since the run would go on for as long as the kernel writes it.
#pragma once

#include <sys/resource.h>
#include <sys/types.h>

#include <chrono>
#include <string_view>
#include <vector>

#include "platform/run/private/Processes.h"
#include "platform/run/private/SupervisorProcess.h"

class Terminal;

class SupervisorLink {
  public:
    // Starts the command. On failure errno says why.
    SupervisorLink(std::string_view command, const Terminal& terminal);
    SupervisorLink(const SupervisorLink&) = delete;
    SupervisorLink& operator=(const SupervisorLink&) = delete;
    // The supervisor then ends the rest of the run.
    ~SupervisorLink();

    bool Started() const { return mProcess > 0; }
    pid_t Process() const { return mProcess; }
    // Readable when PollEnded has something to read.
    int Descriptor() const { return mSocket; }

    void SendOrder(Order order) const;

    // Reads pending reports without blocking. Returns true once the supervisor has ended.
    bool PollEnded();

    // True once the supervisor has ended without saying that it is done. The run may go on then,
    // and KillRun ends it.
    bool WasKilled() const { return mEnded && !mDone; }

    // Kills the processes of a run whose supervisor was killed. Call it again and again, since they
    // may start others meanwhile. Returns true when the run has none.
    bool KillRun();

    // Makes Unkilled() the processes that KillRun could not kill.
    void NoteSurvivors();

    // True once the supervisor has reported the end of the shell. The run may have other processes.
    bool ShellEnded() const { return mShellEnded; }

    // The processes that can't be killed, as far as reported.
    const std::vector<pid_t>& Unkilled() const { return mUnkilled; }

    // Ends the run as the end of the program would, and waits for that, but at most so long.
    void End(std::chrono::milliseconds atMost);

  private:
    // The run's processes that are children of this process.
    ProcessList ChildrenOfRun() const;

    const std::vector<pid_t> mOtherChildren;  // of this process, from before the run
    int mSocket = -1;
    pid_t mProcess = -1;  // reaped when mEnded
    bool mShellEnded = false, mDone = false, mEnded = false;
    std::vector<pid_t> mUnkilled;
    rlimit mCoreLimit{};  // of this process, before the run
};
