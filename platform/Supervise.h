// What a run's supervisor does. It is a process that stands between the program and the run: a
// child of the program's, forked without executing anything, and the parent of the run's shell.
//
// On Linux whoever loses its parent in the run becomes a child of the supervisor's. So the run's
// processes are its descendants, at any time and wherever they went, and nobody else is. It ends
// them when it is told to, and also when the program has ended, in whatever way.
#pragma once

#include <sys/types.h>

// What the program asks for, a byte each.
enum class Order : char { Terminate = 'T', Kill = 'K' };

// Looks after the run of `shell`, a child of this process, and ends this process when the run is
// over: when the shell has ended or, after an order to end the run, when all of it is gone.
//
// Orders come over the socket `program`; its end of file means that the program is gone. Processes
// that can't be killed are told there by their numbers, a pid_t each, before the supervisor gives
// up. All signals are blocked.
[[noreturn]] void Supervise(int program, pid_t shell);
