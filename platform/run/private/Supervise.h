// What a run's supervisor does. It is a process that stands between the program and the run: a
// child of the program's, forked without executing anything, and the parent of the run's shell.
//
// On Linux whoever loses its parent in the run becomes a child of the supervisor's. So the run's
// processes are its descendants, at any time and wherever they went, and nobody else is. It ends
// them when it is told to, and also when the program has ended, in whatever way.
#pragma once

#include <sys/types.h>

// The program's orders. Each is sent as one byte.
enum class Order : char {
    Terminate = 'T',
    Kill = 'K',
    LetGo = 'L',  // leave what the command left in the background; it has ended itself
};

// What the supervisor tells, a pid_t each: the shell's end, or the number of a process that can't
// be killed. After the shell's end it waits for an order: the shell may have ended because the
// program did, and then the rest of the run has to be ended too.
constexpr pid_t kShellEnded = 0;

// Looks after the run of `shell`, a child of this process, and ends this process when the run is
// over. Orders come over the socket `program`, and reports go there; its end of file means that the
// program is gone. All signals are blocked.
[[noreturn]] void Supervise(int program, pid_t shell);
