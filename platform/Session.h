// The processes behind a run, as the system knows them.
#pragma once

#include <set>
#include <utility>
#include <vector>

class Session {
  public:
    // The session that the process `leader` has begun.
    explicit Session(int leader) : mLeader(leader) {}

    // Its living processes and their descendants that have left it, also when the parents of
    // those have ended since an earlier look. Where the system doesn't tell, the leader's process
    // group stands for them, as a negative number. All can be given to kill(2).
    std::vector<int> Processes();

    // Sends the signal to all of them. Those that are stopped are made to go on, so that they see
    // it.
    void Signal(int signal);

    // Kills whoever is left `graceMilliseconds` after now, and returns when all are gone, or after
    // a second more if one can't be killed.
    void End(int graceMilliseconds);

  private:
    int mLeader;
    // What the last look has found, by number and time of birth: numbers are used again.
    std::set<std::pair<int, unsigned long long>> mSeen;
};
