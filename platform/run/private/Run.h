// Runs a command, from its start to the end of its output. One Run object can run any number of
// commands, one after the other. It works on the main thread, between other events; only its
// destructor waits.
#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "platform/run/private/SupervisorLink.h"
#include "platform/run/private/Terminal.h"

class QSocketNotifier;
class QTimer;

class Run {
  public:
    Run();
    Run(const Run&) = delete;
    Run& operator=(const Run&) = delete;
    // Ends a running command with all its processes, and waits less than a second for that.
    ~Run();

    bool IsOver() const { return mPhase == Phase::Over; }

    // Precondition: IsOver(). Failures come as output.
    void Start(std::string_view command);

    // Begins to end the command. Does nothing unless it is running.
    void Stop();

    // Bytes of output have come.
    std::function<void(std::string_view)> Output;
    // All output has come. Another command may be started at once.
    std::function<void()> Completed;

  private:
    enum class Phase {
        Over,      // there is no command
        Starting,  // terminal and supervisor are being made
        Running,   // the shell runs
        Stopping,  // the run's processes were asked to end
        Forced,    // the supervisor kills them, until all are gone or it gives up
        Orphaned,  // the supervisor died. The program kills what is left of the run.
        Draining,  // the processes have ended; some of their output may still be unread
    };

    void Fail(const std::string& reason);
    void Deliver(const std::string& bytes);
    void NextStep();
    void KillOrphans();
    void Ended();
    void Drain();
    void Complete();

    Phase mPhase = Phase::Over;
    std::optional<Terminal> mTerminal;
    std::optional<SupervisorLink> mSupervisor;
    std::unique_ptr<QSocketNotifier> mArrival, mReport;  // of output, from the supervisor
    std::unique_ptr<QTimer> mStep;                       // ends some phases
    std::chrono::steady_clock::time_point mGiveUpAt;     // in Orphaned
    std::size_t mDrainBudget = 0;                        // bytes that Drain may still deliver
    bool mAtLineStart = false;
    std::string mFailure;  // why the command couldn't be started
};
