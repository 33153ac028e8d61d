#include "platform/Terminal.h"

#include <fcntl.h>
#include <stdlib.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

Terminal::Terminal() {
    mMaster = posix_openpt(O_RDWR | O_NOCTTY);
    if (mMaster < 0) return;
    // Neither end may reach a child by inheritance: a tool that held the master would never be
    // hung up.
    fcntl(mMaster, F_SETFD, FD_CLOEXEC);
    fcntl(mMaster, F_SETFL, O_NONBLOCK);
    if (grantpt(mMaster) == 0 && unlockpt(mMaster) == 0)
        mSlave = open(ptsname(mMaster), O_RDWR | O_NOCTTY | O_CLOEXEC);
    if (mSlave < 0) {
        Close();
        return;
    }
    termios mode{};
    tcgetattr(mSlave, &mode);
    cfmakeraw(&mode);
    tcsetattr(mSlave, TCSANOW, &mode);
    const winsize size{.ws_row = 24, .ws_col = 80, .ws_xpixel = 0, .ws_ypixel = 0};
    ioctl(mSlave, TIOCSWINSZ, &size);
}

void Terminal::Close() {
    if (mSlave >= 0) close(mSlave);
    if (mMaster >= 0) close(mMaster);
    mSlave = mMaster = -1;
}
