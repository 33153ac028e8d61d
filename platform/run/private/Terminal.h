// The pseudo terminal of a run, which passes bytes as they are.
#pragma once

#include <string>

class Terminal {
  public:
    // On failure IsOpen() is false, and errno says why.
    Terminal();
    Terminal(const Terminal&) = delete;
    Terminal& operator=(const Terminal&) = delete;
    // Sends SIGHUP to the processes whose controlling terminal it is.
    ~Terminal() { Close(); }

    bool IsOpen() const { return mSlave >= 0; }
    // The program's end.
    int Master() const { return mMaster; }
    // The tool's end. It stays open here too: otherwise the master would read an end of file
    // whenever no process of the tool has it open.
    int Slave() const { return mSlave; }

    // Reads the next portion of the output without blocking. Empty if there is none.
    std::string Read() const;

  private:
    void Close();

    int mMaster = -1, mSlave = -1;
};
