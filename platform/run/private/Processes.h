// Finds the processes of a run. Nothing here allocates or takes a lock: the supervisor calls it,
// which was forked from a program that may have threads, and has executed nothing.
#pragma once

#include <sys/types.h>

#include <array>
#include <cstddef>

class ProcessList {
  public:
    void Add(pid_t process) {
        if (mCount < mProcesses.size()) mProcesses[mCount++] = process;
    }
    std::size_t Count() const { return mCount; }
    pid_t operator[](std::size_t i) const { return mProcesses[i]; }
    const pid_t* begin() const { return mProcesses.data(); }
    const pid_t* end() const { return mProcesses.data() + mCount; }

  private:
    // A longer list is cut off. The others get their signal at the next attempt.
    std::array<pid_t, 16384> mProcesses;
    std::size_t mCount = 0;
};

// Adds the children of `parent`, zombies included. On macOS it adds nothing.
void AddChildren(pid_t parent, ProcessList& list);

// Adds all descendants of this process. One that is forked meanwhile may be missing.
void AddDescendants(ProcessList& list);

// Adds all descendants of the processes in the list.
void AddDescendantsOfListed(ProcessList& list);
