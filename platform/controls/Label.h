#pragma once

#include "platform/controls/Control.h"

// One line of fixed text at the right edge of its place, next to the control that it names.
class Label : public RectControl {
  public:
    Label(Window& owner, std::string name);
    void Text(std::string_view text);
    // Tells screen readers that this is the label of the control.
    void Names(const RectControl& control);
};
