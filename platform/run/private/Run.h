// The life of a command that runs, from its start to the end of its output. One Run object can run
// any number of commands, one after the other. All of it happens on the main thread, between other
// events; nothing but the destructor waits.
#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "platform/run/private/Supervisor.h"
#include "platform/run/private/Terminal.h"

class QSocketNotifier;
class QTimer;

class Run {
  public:
    Run();
    Run(const Run&) = delete;
    Run& operator=(const Run&) = delete;
    // Ends a running command with all its processes, and waits for that for less than a second.
    ~Run();

    bool IsOver() const { return mPhase == Phase::Over; }

    // Only when the last command is over. Failures come as output.
    void Start(std::string_view command);

    // Begins to end the running command; does nothing in any later phase.
    void Stop();

    // Bytes of output have come.
    std::function<void(std::string_view)> Output;
    // All output has come. Another command may be started at once.
    std::function<void()> Completed;

  private:
    enum class Phase {
        Over,      // no command
        Starting,  // terminal and supervisor are being made
        Running,   // until the shell ends
        Stopping,  // asked to end, until all of the run's processes have
        Forced,    // killed, until all of them are gone or can't be killed
        Orphaned,  // the supervisor was killed, and now the rest is, until all are gone or can't be
        Draining,  // the processes have ended, output of theirs may be left
    };

    void Fail(const std::string& reason);
    void Pass(const std::string& bytes);
    void NextStep();
    void KillOrphans();
    void Ended();
    void Drain();
    void Complete();

    Phase mPhase = Phase::Over;
    std::optional<Terminal> mTerminal;
    std::optional<Supervisor> mSupervisor;
    std::unique_ptr<QSocketNotifier> mArrival, mReport;  // of output, from the supervisor
    std::unique_ptr<QTimer> mStep;                       // ends some phases
    std::chrono::steady_clock::time_point mGiveUpAt;     // in Orphaned
    std::size_t mRest = 0;                               // bytes that may still be drained
    bool mAtLineStart = false;
    std::string mFailure;  // why the command couldn't be started
};
