// The editor of a cell that is open.
//
// Nothing that the user does may act on the text from before the edit. The editor commits its text
// when it loses the focus, but it has to stay open while the menu bar has the focus, since the
// items of the edit menu act on it. So whatever acts commits the open editor first.
#pragma once

#include <functional>

class QEvent;
class QWidget;

// Makes `editor` the open one, until it is destroyed or another one is opened. `commit` takes its
// text over and closes it; it does nothing if the editor has been closed meanwhile.
void SetOpenEditor(QWidget* editor, std::function<void()> commit);

// Tells that an input method is composing in `widget`. `end` makes text of the composition; it does
// nothing if there is none any more.
void SetComposing(QWidget* widget, std::function<void()> end);

// Makes text of what an input method is composing, in whatever widget.
void EndComposing();

// Ends a composition, and commits the open editor if there is one.
void CommitOpenEdit();

// Commits the open editor once the focus has gone from the menu bar to another widget. To be called
// from QApplication::notify with every event, before the event is delivered.
void WatchForFocus(const QEvent& event);
