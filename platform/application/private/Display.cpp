#include "platform/application/private/Display.h"

#include <QStringList>
#include <algorithm>
#include <cstdio>
#include <cstdlib>

namespace {

QStringList heldBack;
QtMessageHandler former = nullptr;

void HoldBack(QtMsgType type, const QMessageLogContext& context, const QString& message) {
    // Only with QT_DEBUG_PLUGINS, which fills a screen.
    if (type == QtDebugMsg) return former(type, context, message);
    heldBack += qFormatLogMessage(type, context, message).simplified();
    if (type != QtFatalMsg) return;
    // Qt doesn't say so.
    const auto variables = {"WAYLAND_DISPLAY", "DISPLAY", "QT_QPA_PLATFORM"};
    if (std::ranges::all_of(variables, qEnvironmentVariableIsEmpty))
        heldBack.prepend(QStringLiteral("neither WAYLAND_DISPLAY nor DISPLAY is set"));
    std::fprintf(stderr, "quillstone: %s\n", qPrintable(heldBack.join(QStringLiteral("; "))));
    std::_Exit(1);  // no destructors: Qt is only half constructed
}

}  // namespace

DisplayWatch::DisplayWatch() { former = qInstallMessageHandler(HoldBack); }

DisplayWatch::~DisplayWatch() {
    qInstallMessageHandler(former);
    for (const QString& message : heldBack) std::fprintf(stderr, "%s\n", qPrintable(message));
    heldBack.clear();
}
