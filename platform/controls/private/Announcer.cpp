#include "platform/controls/private/Announcer.h"

#include <QAccessible>
#include <chrono>

using namespace std::chrono_literals;

Announcer::Announcer(QWidget& widget) : mWidget(widget) {
    mTimer.setSingleShot(true);
    mTimer.setInterval(1s);
    mTimer.callOnTimeout([this] { AnnounceLine(); });
}

void Announcer::Announce(const QString& text) {
    constexpr bool kCanAnnounce = QT_VERSION >= QT_VERSION_CHECK(6, 8, 0);
    if (!kCanAnnounce || !QAccessible::isActive()) return;
    const QStringList lines = text.split(u'\n', Qt::SkipEmptyParts);
    if (lines.isEmpty()) return;
    mLine = lines.constLast().right(200);
    if (!mTimer.isActive()) mTimer.start();
}

void Announcer::AnnounceLine() {
#if QT_VERSION >= QT_VERSION_CHECK(6, 8, 0)
    QAccessibleAnnouncementEvent event(&mWidget, mLine);
    QAccessible::updateAccessibility(&event);
#endif
}
