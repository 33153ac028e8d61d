// The processes of a run, as its supervisor finds them. System calls alone, so that a look is
// allowed in a child that was forked and hasn't executed anything.
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
    // If there are more, the rest is found when some of these have ended.
    std::array<pid_t, 16384> mProcesses;
    std::size_t mCount = 0;
};

// Adds the children of `parent`, the dead that it hasn't waited for included. Nothing where the
// system doesn't tell.
void AddChildren(pid_t parent, ProcessList& list);

// Adds all descendants of this process. A process that is forked meanwhile may be missing.
void AddDescendants(ProcessList& list);
