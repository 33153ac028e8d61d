// The portable calls know a fixed list of rates. For others, such as 14400 or 76800, each system
// has a call of its own. On Linux the header of that call can't be included together with
// termios.h.
#include "platform/serial/private/SerialRate.h"

#include <sys/ioctl.h>

#include <cstdlib>
#include <limits>

#ifdef __APPLE__

#include <IOKit/serial/ioss.h>
#include <termios.h>

std::int64_t SerialRate(int descriptor) {
    termios mode{};
    return tcgetattr(descriptor, &mode) == 0 ? static_cast<std::int64_t>(cfgetospeed(&mode)) : 0;
}

bool SetSerialRate(int descriptor, std::int64_t rate) {
    if (rate <= 0 || rate > std::numeric_limits<int>::max()) return false;
    auto speed = static_cast<speed_t>(rate);
    termios mode{};
    if (tcgetattr(descriptor, &mode) != 0) return false;
    if (cfsetspeed(&mode, speed) == 0 && tcsetattr(descriptor, TCSANOW, &mode) == 0) return true;
    return ioctl(descriptor, IOSSIOSPEED, &speed) == 0;
}

#else

#include <asm/termbits.h>

std::int64_t SerialRate(int descriptor) {
    termios2 mode{};
    return ioctl(descriptor, TCGETS2, &mode) == 0 ? std::int64_t{mode.c_ospeed} : 0;
}

bool SetSerialRate(int descriptor, std::int64_t rate) {
    if (rate <= 0 || rate > std::numeric_limits<int>::max()) return false;
    termios2 mode{};
    if (ioctl(descriptor, TCGETS2, &mode) != 0) return false;
    mode.c_cflag &= ~static_cast<tcflag_t>(CBAUD | CBAUD << IBSHIFT);
    mode.c_cflag |= BOTHER | BOTHER << IBSHIFT;
    mode.c_ospeed = mode.c_ispeed = static_cast<speed_t>(rate);
    if (ioctl(descriptor, TCSETS2, &mode) != 0) return false;
    // A driver that lacks the rate sets another one and reports no error. A serial line tolerates a
    // difference of a few percent.
    return std::abs(SerialRate(descriptor) - rate) <= rate / 20;
}

#endif
