#pragma once

#include <string>
#include <string_view>

#include "platform/controls/Control.h"

// The base of the two text controls. Each call of the setter raises TextChange, as an edit by the
// user does.
class TextEdit : public RectControl {
  public:
    virtual std::string Text() const = 0;
    virtual void Text(std::string_view text) = 0;

  protected:
    using RectControl::RectControl;
};
