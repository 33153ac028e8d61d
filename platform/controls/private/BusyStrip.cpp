#include "platform/controls/private/BusyStrip.h"

#include <QPainter>
#include <QWidget>

void BusyStrip::Busy(bool busy) {
    if (busy) {
        mSince.start();
        mTimer.start(50, this);
    } else {
        mSince.invalidate();
        mTimer.stop();
    }
    mWidget.update();
}

void BusyStrip::Paint(QPainter& painter) const {
    if (!IsBusy()) return;
    constexpr qint64 kRound = 2000;  // milliseconds
    const int width = mWidget.width();
    const auto left = static_cast<int>(mSince.elapsed() % kRound * width / kRound);
    const QPalette& palette = mWidget.palette();
    painter.fillRect(0, 0, width, kHeight, palette.color(QPalette::Midlight));
    for (const int from : {left, left - width})  // what leaves at the right comes in at the left
        painter.fillRect(from, 0, width / 4, kHeight,
                         palette.color(QPalette::Active, QPalette::Highlight));
}

void BusyStrip::timerEvent(QTimerEvent*) { mWidget.update(0, 0, mWidget.width(), kHeight); }
