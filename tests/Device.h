// A serial device for the tests that need one: a pseudo terminal.
#pragma once

#include <fcntl.h>
#include <poll.h>
#include <stdlib.h>
#include <unistd.h>

#include "platform/system/System.h"

// The device's side of a port. Destroying it pulls the device out.
struct Device {
    Device() {  // not every system takes O_CLOEXEC in posix_openpt
        if (fcntl(fd, F_SETFD, FD_CLOEXEC) != 0 || grantpt(fd) != 0 || unlockpt(fd) != 0) abort();
    }
    ~Device() { close(fd); }

    // True while a program has the port open. Ask only after the port was opened once.
    bool InUse() const {
        pollfd line{fd, 0, 0};
        return poll(&line, 1, 0) == 0;
    }

    const int fd = posix_openpt(O_RDWR | O_NOCTTY);
    std::string path = ptsname(fd), name = path.substr(System().DevicePrefix.size());
};
