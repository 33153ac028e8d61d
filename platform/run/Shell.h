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
// The command has a terminal of its own for its output and error, so that it writes lines as they
// come, and no input. When the program ends, in whatever way, that terminal hangs up.
class Shell : public Control {
  public:
    Shell(Window& owner, std::string name);
    // Ends a running command, with all its child processes, and waits for that below a second.
    ~Shell() override;

    // Starts the command, exactly as it stands; does nothing while one is running. What the system
    // says when it can't be started arrives as output.
    void Execute(std::string_view command);

    // The text of the output that has come since the last call, of any bytes. While the command
    // runs, a character, line end or control sequence that is not complete waits for its rest.
    std::string ReadAll();

    // Ends a running command with all its child processes: by SIGTERM, and after two seconds by
    // SIGKILL. The run then completes as any other, also when a process can't be killed; the output
    // says so. Returns at once.
    void Stop();

    std::function<void(Shell&)> DataAvailable;
    // Once for each command that was executed, when it has ended, with the rest of the output
    // still to be read. A process that it left in the background doesn't hold this up.
    std::function<void(Shell&)> Completed;

  private:
    const std::unique_ptr<Run> mRun;
    OutputText mText;
    std::string mOutput;
};
