// Tells screen readers what a widget has got, wherever the focus is. Qt reports each insertion of
// text too, but a screen reader may ignore those of a widget without the focus.
#pragma once

#include <memory>

class QString;
class QWidget;

class Announcer {
  public:
    explicit Announcer(QWidget& widget);
    ~Announcer();

    // Of much text its last line, and no more than one line in a second. Before Qt 6.8 there are no
    // announcements.
    void Announce(const QString& text);

  private:
    class Line;

    const std::unique_ptr<Line> mLine;
};
