// Tells screen readers of new text in a widget. Qt reports each insertion too, but a screen reader
// may ignore insertions into a widget without the focus.
#pragma once

#include <QTimer>
#include <QWidget>

class Announcer {
  public:
    explicit Announcer(QWidget& widget);

    // Announces only the last line, at most once a second. Qt can't announce before version 6.8.
    void Announce(const QString& text);

  private:
    void AnnounceLine();

    [[maybe_unused]] QWidget& mWidget;
    QTimer mTimer;  // runs while the line waits
    QString mLine;
};
