#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "platform/controls/Control.h"
#include "platform/text/OutputText.h"

class Run;

// Runs one command line at a time through /bin/sh, in the background and without a time limit.
//
// The command has no input. It has a terminal of its own for its output and error, so that it
// writes out each line at once. The terminal hangs up when the program ends, in whatever way.
class Shell : public Control {
  public:
    Shell(Window& owner, std::string name);
    // Ends a running command, with all its child processes, and waits less than a second for that.
    ~Shell() override;

    // Starts the command, exactly as it stands. Does nothing while one is running. If the command
    // can't be started, the reason arrives as output.
    void Execute(std::string_view command);

    // The text of the output that has come since the last call. It may hold bytes that are no
    // UTF-8. While the command runs, an incomplete character, line end or control sequence at the
    // end is held back until the rest of it comes.
    std::string ReadAll();

    // Ends a running command with all its child processes: by SIGTERM, and after two seconds by
    // SIGKILL. Returns at once. Completed comes as at any other end, also if a process can't be
    // killed, which the output then says.
    void Stop();

    std::function<void(Shell&)> DataAvailable;
    // Comes once for each command, when it has ended. ReadAll then gives the rest of the output.
    // A process that the command left in the background doesn't delay it.
    std::function<void(Shell&)> Completed;

  private:
    const std::unique_ptr<Run> mRun;
    OutputText mText;
    std::string mOutput;
};
