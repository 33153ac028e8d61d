// The pseudo terminal of a run, which passes bytes as they are.
#pragma once

#include <string>

class Terminal {
  public:
    // Where it fails, errno says why.
    Terminal();
    Terminal(const Terminal&) = delete;
    Terminal& operator=(const Terminal&) = delete;
    // Hangs up the processes whose controlling terminal it is.
    ~Terminal() { Close(); }

    bool IsOpen() const { return mSlave >= 0; }
    // Our end.
    int Master() const { return mMaster; }
    // The tool's end. Held open here too, so that the master never reads an end of file while
    // the tool's processes come and go.
    int Slave() const { return mSlave; }

    // The output that has arrived, up to a portion; empty if there is none. Never waits.
    std::string Read() const;

  private:
    void Close();

    int mMaster = -1, mSlave = -1;
};
