// A thin strip that moves at the upper edge of a widget while something goes on.
#pragma once

#include <memory>

class QPainter;
class QWidget;

class BusyStrip {
  public:
    static constexpr int kHeight = 3;

    explicit BusyStrip(QWidget& widget);
    ~BusyStrip();

    void Busy(bool busy);
    bool IsBusy() const { return mMoving != nullptr; }

    // For the widget's paint event. Paints nothing while idle.
    void Paint(QPainter& painter) const;

  private:
    class Moving;

    QWidget& mWidget;
    std::unique_ptr<Moving> mMoving;  // while busy
};
