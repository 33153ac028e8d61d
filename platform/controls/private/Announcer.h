// Tells screen readers what a widget has got, wherever the focus is. Qt reports each insertion of
// text too, but a screen reader may ignore those of a widget without the focus.
#pragma once

#include <QBasicTimer>
#include <QObject>
#include <QString>

class QWidget;

class Announcer : public QObject {
  public:
    explicit Announcer(QWidget& widget) : mWidget(widget) {}

    // Of much text its last line, and no more than one line in a second. Before Qt 6.8 there are no
    // announcements.
    void Announce(const QString& text);

  protected:
    void timerEvent(QTimerEvent* event) override;

  private:
    QWidget& mWidget;
    QBasicTimer mTimer;
    QString mLine;
};
