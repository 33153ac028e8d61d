// Keys that are held down, and modifier keys.
#pragma once

class QEvent;
class QKeyEvent;

// To be called from QApplication::notify with every event, before the event is delivered.
void WatchForHeldKey(const QEvent& event);

// True if the key that is being handled is held down and repeats itself. On X11 Qt marks a repeat
// only if the next press is already waiting, so it misses some.
bool KeyIsHeld();

// True for Control, Shift, Alt, AltGr and Meta.
bool IsModifier(int key);

// A button that a held key presses once.
template <class Button>
class PressedOnce : public Button {
  public:
    using Button::Button;

  protected:
    void keyPressEvent(QKeyEvent* event) override {
        if (!KeyIsHeld()) Button::keyPressEvent(event);
    }
};
