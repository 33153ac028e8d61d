#include "platform/controls/private/Announcer.h"

#include <QAccessible>
#include <QStringList>
#include <QWidget>

void Announcer::Announce(const QString& text) {
    constexpr bool kCanAnnounce = QT_VERSION >= QT_VERSION_CHECK(6, 8, 0);
    if (!kCanAnnounce || !QAccessible::isActive()) return;
    const QStringList lines = text.split(u'\n', Qt::SkipEmptyParts);
    if (lines.isEmpty()) return;
    mLine = lines.constLast().right(200);
    if (!mTimer.isActive()) mTimer.start(1000, this);
}

void Announcer::timerEvent(QTimerEvent*) {
    mTimer.stop();
#if QT_VERSION >= QT_VERSION_CHECK(6, 8, 0)
    QAccessibleAnnouncementEvent event(&mWidget, mLine);
    QAccessible::updateAccessibility(&event);
#endif
}
