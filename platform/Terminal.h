// A pseudo terminal that passes bytes as they are.
#pragma once

class Terminal {
  public:
    Terminal();
    Terminal(const Terminal&) = delete;
    Terminal& operator=(const Terminal&) = delete;
    // Hangs up whoever has it as controlling terminal.
    ~Terminal() { Close(); }
    void Close();

    bool IsOpen() const { return mSlave >= 0; }
    // Our end; reads don't block.
    int Master() const { return mMaster; }
    // The tool's end. Held open here too, so that the master never reads an end of file while
    // the tool's processes come and go.
    int Slave() const { return mSlave; }

  private:
    int mMaster = -1, mSlave = -1;
};
