#pragma once

#include <sys/types.h>

#include <string_view>

class Terminal;

// Starts the command through /bin/sh under a supervisor of its own (see SupervisorProcess.h). The
// command has no input, and the terminal for all its output.
//
// Returns the supervisor's process, which the caller has to wait for, and puts a descriptor for
// orders and reports into `supervisor`. On failure returns -1, with the reason in errno. If the
// shell can't be started or executed, the reason comes as output.
pid_t Spawn(std::string_view command, const Terminal& terminal, int& supervisor);
