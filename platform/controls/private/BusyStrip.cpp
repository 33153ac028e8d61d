#include "platform/controls/private/BusyStrip.h"

#include <QElapsedTimer>
#include <QPainter>
#include <QTimer>
#include <QWidget>

class BusyStrip::Moving {
  public:
    explicit Moving(QWidget& widget) {
        mSince.start();
        mTimer.callOnTimeout([&widget] { widget.update(0, 0, widget.width(), kHeight); });
        mTimer.start(50);
    }
    qint64 Milliseconds() const { return mSince.elapsed(); }

  private:
    QElapsedTimer mSince;
    QTimer mTimer;
};

BusyStrip::BusyStrip(QWidget& widget) : mWidget(widget) {}

BusyStrip::~BusyStrip() = default;

void BusyStrip::Busy(bool busy) {
    mMoving = busy ? std::make_unique<Moving>(mWidget) : nullptr;
    mWidget.update();
}

void BusyStrip::Paint(QPainter& painter) const {
    if (!mMoving) return;
    constexpr qint64 kRound = 2000;  // milliseconds
    const int width = mWidget.width();
    const auto left = static_cast<int>(mMoving->Milliseconds() % kRound * width / kRound);
    const QPalette& palette = mWidget.palette();
    painter.fillRect(0, 0, width, kHeight, palette.color(QPalette::Midlight));
    for (const int from : {left, left - width})  // what leaves at the right comes in at the left
        painter.fillRect(from, 0, width / 4, kHeight,
                         palette.color(QPalette::Active, QPalette::Highlight));
}
