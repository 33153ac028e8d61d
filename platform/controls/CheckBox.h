#pragma once

#include "platform/controls/Control.h"

class CheckBox : public RectControl {
  public:
    CheckBox(Window& owner, std::string name);
    void Caption(std::string_view caption);
    bool Value() const;
};
