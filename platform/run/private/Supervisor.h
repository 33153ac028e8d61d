// The program's side of a run's supervisor (see Supervise.h). One run at a time has one.
//
// While a run lasts, this process is a child subreaper: if the supervisor is killed, the run's
// processes become children of this process and can still be ended. And it leaves no core file: the
// run would go on for as long as the kernel writes it.
#pragma once

#include <sys/resource.h>
#include <sys/types.h>

#include <chrono>
#include <string_view>
#include <vector>

#include "platform/run/private/Processes.h"
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

    // Takes what the supervisor has to tell, without waiting. Whether the supervisor has ended.
    bool Hear();

    // Whether the supervisor has ended by a signal. Processes of the run may be left then, which
    // KillRun ends.
    bool WasKilled() const { return mWasKilled; }

    // Kills what is left of the run of a supervisor that was killed. Call it again and again, since
    // the processes may start others meanwhile. True when none is left.
    bool KillRun();

    // Counts what KillRun has left among the Unkilled.
    void GiveUp();

    // Whether the shell has ended, as far as heard. Others of the run may be left.
    bool ShellEnded() const { return mShellEnded; }

    // The processes that it couldn't kill, as far as heard.
    const std::vector<pid_t>& Unkilled() const { return mUnkilled; }

    // Ends the run as the end of the program would. Waits until it is over, but at most so long.
    void End(std::chrono::milliseconds atMost);

  private:
    // Those of the run's processes that are children of this one.
    ProcessList ChildrenOfRun() const;

    const std::vector<pid_t> mOtherChildren;  // of this process, from before the run
    int mSocket = -1;
    pid_t mProcess = -1;  // reaped when mOver
    bool mShellEnded = false, mOver = false, mWasKilled = false;
    std::vector<pid_t> mUnkilled;
    rlimit mCoreLimit{};  // of this process, before the run
};
