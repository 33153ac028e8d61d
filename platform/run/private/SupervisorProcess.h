// A run's supervisor: a process between the program and the run. It is a child of the program,
// forked without executing anything, and the parent of the run's shell.
//
// On Linux a process of the run that loses its parent becomes a child of the supervisor. So the
// run's processes are its descendants, at any time and wherever they went, and nobody else is. The
// supervisor ends them when the program orders it to, and also when the program has ended, in
// whatever way.
#pragma once

#include <sys/types.h>

// The program's orders. Each is sent as one byte.
enum class Order : char {
    Terminate = 'T',
    Kill = 'K',
    LetGo = 'L',  // leave alone what runs in the background: the command itself has ended
};

// The supervisor's reports, a pid_t each. Any other value is the number of a process that can't be
// killed.
//
// After kShellEnded the supervisor waits for an order. If the shell ended because the program did,
// the end of file comes instead, and the supervisor ends the rest of the run.
constexpr pid_t kShellEnded = 0;
// The last report. An end of file without it means that the supervisor was killed.
constexpr pid_t kDone = -1;

// Looks after the run of `shell`, a child of this process, and ends this process when the run is
// over. The supervisor reads orders from the socket `program` and writes reports to it. An end of
// file there means that the program is gone.
//
// Precondition: all signals are blocked, and WakeOnChildEnd was called before the fork of `shell`.
[[noreturn]] void Supervise(int program, pid_t shell);

// Lets the end of a child interrupt the supervisor's wait. Without it the system reaps the shell
// unseen where the program was started with SIGCHLD ignored.
void WakeOnChildEnd();

// Ends the supervisor with its last report.
[[noreturn]] void EndSupervisor(int program);
