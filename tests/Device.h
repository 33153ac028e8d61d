// A serial device for the tests that need one: a pseudo terminal.
#pragma once

#include <fcntl.h>
#include <stdlib.h>
#include <unistd.h>

#include <QtGlobal>
#include <string>

#include "platform/System.h"

// The device's side of a port. Destroying it pulls the device out.
struct Device {
    Device() {
        if (grantpt(fd) != 0 || unlockpt(fd) != 0) qFatal("no pseudo terminal");
        path = ptsname(fd);
        name = path.substr(kDevicePrefix.size());
    }
    ~Device() { close(fd); }

    const int fd = posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
    std::string path, name;
};
