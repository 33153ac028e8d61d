#include "platform/application/private/Display.h"

#include <QCoreApplication>
#include <QDir>
#include <algorithm>
#include <cstdio>
#include <cstdlib>

namespace {

QString heldBack;
QtMessageHandler former = nullptr;

// Of Wayland there are several, such as libqwayland-egl.so.
bool HasPlugin(const QString& platform) {
    const QStringList folders = QCoreApplication::libraryPaths();
    return std::ranges::any_of(folders, [&platform](const QString& folder) {
        const QStringList names = {"libq" + platform + ".*", "libq" + platform + "-*"};
        return !QDir(folder + "/platforms").entryList(names).isEmpty();
    });
}

// Looks where Qt has looked: the platform asked for, else Wayland, else X11.
QString WhatIsMissing() {
    const QString platform = qEnvironmentVariable("QT_QPA_PLATFORM");
    if (!platform.isEmpty()) {
        const QStringList wanted = platform.split(';');
        const bool known = std::ranges::any_of(
            wanted, [](const QString& name) { return HasPlugin(name.section(':', 0, 0)); });
        return "Qt gets no display by QT_QPA_PLATFORM=" + platform +
               (known ? "" : ", which it has no plugin for");
    }
    const QString wayland = qEnvironmentVariable("WAYLAND_DISPLAY");
    const QString x11 = qEnvironmentVariable("DISPLAY");
    if (!wayland.isEmpty() && !HasPlugin("wayland"))
        return "Qt's plugin for Wayland is missing (on Debian it is in the package qt6-wayland)";
    if (!x11.isEmpty() && !HasPlugin("xcb")) return "Qt's plugin for X11 (xcb) is missing";
    if (wayland.isEmpty() && x11.isEmpty())
        return "there is no display: neither WAYLAND_DISPLAY nor DISPLAY is set";
    return "can't open the display " + wayland +
           (wayland.isEmpty() || x11.isEmpty() ? "" : ", nor ") + x11;
}

void HoldBack(QtMsgType type, const QMessageLogContext& context, const QString& message) {
    if (type != QtFatalMsg) {
        heldBack += qFormatLogMessage(type, context, message) + '\n';
        return;
    }
    std::fprintf(stderr, "quillstone: %s\n", qPrintable(WhatIsMissing()));
    std::_Exit(1);  // no destructors: Qt is only half constructed
}

}  // namespace

DisplayWatch::DisplayWatch() { former = qInstallMessageHandler(HoldBack); }

DisplayWatch::~DisplayWatch() {
    qInstallMessageHandler(former);
    std::fputs(qPrintable(heldBack), stderr);
    heldBack.clear();
}
