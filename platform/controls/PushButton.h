#pragma once

#include <functional>

#include "platform/controls/Control.h"

class PushButton : public RectControl {
  public:
    PushButton(Window& owner, std::string name);
    void Caption(std::string_view caption);

    // Presses the button, if it is enabled, and leaves the focus where it is.
    void Press();

    // The button was pressed. A cell, text or choice that was being edited has been committed.
    std::function<void(PushButton&)> Action;
};
