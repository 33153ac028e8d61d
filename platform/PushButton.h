#pragma once

#include <functional>

#include "platform/Control.h"

class PushButton : public RectControl {
  public:
    PushButton(Window& owner, std::string name);
    void Caption(std::string_view caption);

    // The user has pressed the button. A cell or text that was being edited has been committed.
    std::function<void(PushButton&)> Action;
};
