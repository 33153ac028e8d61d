// The processes behind a run, as the system knows them.
#pragma once

#include <vector>

// The living processes of the session that `leader` began, and their descendants that have left
// it. Where the system doesn't tell, the leader's process group stands for them, as a negative
// number. All can be given to kill(2).
std::vector<int> SessionProcesses(int leader);

// Sends the signal to all of them. Those that are stopped are made to go on, so that they see it.
void SignalSession(int leader, int signal);

// Kills whoever is left `graceMilliseconds` after now, and returns when all are gone, or after a
// second more if one can't be killed.
void EndSession(int leader, int graceMilliseconds);
