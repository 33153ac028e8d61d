// A thin strip that moves at the upper edge of a widget while something goes on.
#pragma once

#include <QBasicTimer>
#include <QElapsedTimer>
#include <QObject>

class QPainter;
class QWidget;

class BusyStrip : public QObject {
  public:
    static constexpr int kHeight = 3;

    explicit BusyStrip(QWidget& widget) : mWidget(widget) {}

    void Busy(bool busy);
    bool IsBusy() const { return mSince.isValid(); }

    // For the widget's paint event. Paints nothing while idle.
    void Paint(QPainter& painter) const;

  protected:
    void timerEvent(QTimerEvent* event) override;

  private:
    QWidget& mWidget;
    QElapsedTimer mSince;  // valid while busy
    QBasicTimer mTimer;
};
