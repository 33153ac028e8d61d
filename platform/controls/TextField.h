#pragma once

#include <functional>

#include "platform/controls/TextEdit.h"

// One line. A text of more than 65,536 characters is cut off. A line end that the user brings in,
// by a paste for example, becomes a blank.
class TextField : public TextEdit {
  public:
    TextField(Window& owner, std::string name);

    std::string Text() const override;
    void Text(std::string_view text) override;

    std::function<void(TextField&)> TextChange;
};
