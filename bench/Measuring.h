// What the measurements of bench_child share.
#pragma once

#include <QAbstractEventDispatcher>
#include <QApplication>
#include <QElapsedTimer>
#include <QTimer>
#include <algorithm>
#include <string>
#include <vector>

#include "flash/EspWin.h"

using Arguments = std::vector<std::string>;

// Since the last call, or since the clock was started.
inline double MicrosecondsOf(QElapsedTimer& clock) {
    const auto elapsed = static_cast<double>(clock.nsecsElapsed()) / 1000;
    clock.restart();
    return elapsed;
}

// The longest turn of the event loop since this was made. A turn is what the event loop does before
// it looks for new events: as a rule one handler, at times with the painting that it led to.
class TurnWatch : public QObject {
  public:
    TurnWatch() : QObject(qApp) {
        connect(QAbstractEventDispatcher::instance(), &QAbstractEventDispatcher::awake, this,
                [this] { mLongest = std::max(mLongest, MicrosecondsOf(mTurn)); });
        mIdle.start(1);  // so that no turn is long for lack of events
        mTurn.start();
    }

    double Milliseconds() const { return mLongest / 1000; }

  private:
    QTimer mIdle;
    QElapsedTimer mTurn;
    double mLongest = 0;
};
