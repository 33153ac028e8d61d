#pragma once

#include <functional>

#include "platform/controls/Control.h"

class PushButton : public RectControl {
  public:
    PushButton(Window& owner, std::string name);
    void Caption(std::string_view caption);

    // Presses the button, if it is enabled, and leaves the focus where it is.
    void Press();

    bool LiesOnTop() const override { return true; }

    // The user has pressed the button. The edit of a cell or a text has been committed before.
    std::function<void(PushButton&)> Action;
};
