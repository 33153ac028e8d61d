#include "platform/run/private/Terminal.h"

#include <fcntl.h>
#include <termios.h>
#include <unistd.h>
#ifdef __APPLE__
#include <util.h>
#else
#include <pty.h>
#endif

#include <algorithm>
#include <array>
#include <cerrno>

namespace {

// The limits of a portion of output, in bytes and in lines. Input events are handled between two
// portions. To show a line costs as much as to show some tens of bytes.
constexpr std::size_t kPortion = 64UL * 1024;
constexpr std::ptrdiff_t kPortionLines = 2000;

bool PassesBytesAsTheyAre(int terminal) {
    termios mode{};
    if (tcgetattr(terminal, &mode) != 0) return false;
    cfmakeraw(&mode);
    return tcsetattr(terminal, TCSANOW, &mode) == 0;
}

}  // namespace

Terminal::Terminal() {
    winsize size{.ws_row = 24, .ws_col = 80, .ws_xpixel = 0, .ws_ypixel = 0};
    if (openpty(&mMaster, &mSlave, nullptr, nullptr, &size) != 0) return;
    // Children must not inherit either end: a tool that held the master would never get SIGHUP.
    // macOS accepts O_NONBLOCK only once both ends are open.
    if (fcntl(mMaster, F_SETFD, FD_CLOEXEC) == 0 && fcntl(mSlave, F_SETFD, FD_CLOEXEC) == 0 &&
        fcntl(mMaster, F_SETFL, O_NONBLOCK) == 0 && PassesBytesAsTheyAre(mSlave))
        return;
    const int reason = errno;
    Close();
    errno = reason;
}

void Terminal::Close() {
    if (mSlave >= 0) close(mSlave);
    if (mMaster >= 0) close(mMaster);
    mSlave = mMaster = -1;
}

std::string Terminal::Read() const {
    std::string portion;
    std::array<char, 4096> part;
    for (std::ptrdiff_t lines = 0; portion.size() < kPortion && lines < kPortionLines;) {
        const auto count = read(mMaster, part.data(), part.size());
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) break;
        portion.append(part.data(), static_cast<std::size_t>(count));
        lines += std::count(part.begin(), part.begin() + count, '\n');
    }
    return portion;
}
