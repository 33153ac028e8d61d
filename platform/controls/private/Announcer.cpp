#include "platform/controls/private/Announcer.h"

#include <QAccessible>
#include <QStringList>
#include <QTimer>
#include <QWidget>

// The line that is told when the timer runs out.
class Announcer::Line {
  public:
    explicit Line(QWidget& widget) : mWidget(widget) {
        mTimer.setSingleShot(true);
        mTimer.setInterval(1000);
        mTimer.callOnTimeout([this] { Tell(); });
    }

    void Set(const QString& text) {
        mText = text;
        if (!mTimer.isActive()) mTimer.start();
    }

  private:
    void Tell() {
#if QT_VERSION >= QT_VERSION_CHECK(6, 8, 0)
        QAccessibleAnnouncementEvent event(&mWidget, mText);
        QAccessible::updateAccessibility(&event);
#endif
    }

    [[maybe_unused]] QWidget& mWidget;
    QTimer mTimer;
    QString mText;
};

Announcer::Announcer(QWidget& widget) : mLine(std::make_unique<Line>(widget)) {}

Announcer::~Announcer() = default;

void Announcer::Announce(const QString& text) {
    constexpr bool kCanAnnounce = QT_VERSION >= QT_VERSION_CHECK(6, 8, 0);
    if (!kCanAnnounce || !QAccessible::isActive()) return;
    const QStringList lines = text.split(u'\n', Qt::SkipEmptyParts);
    if (!lines.isEmpty()) mLine->Set(lines.constLast().right(200));
}
