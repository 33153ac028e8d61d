#pragma once

#include <cstdint>
#include <functional>

#include "platform/controls/TextEdit.h"

class TextPane;

// Several lines, wrapped, with a vertical scroll bar. Tab leaves it. It is never smaller than 48 by
// 24 pixels, since smaller ones can't be laid out.
class TextArea : public TextEdit {
  public:
    TextArea(Window& owner, std::string name);

    // Returns a text that was set byte for byte, also where the control can't show all of it. Once
    // the user has edited the text, returns what the control shows.
    std::string Text() const override;
    void Text(std::string_view text) override;
    void ReadOnly(bool readOnly);

    // Adds text at the end, without a separator. `text` holds whole characters, with LF as line
    // end. The oldest lines are dropped when there is too much text. For an area that is read-only.
    void AppendText(std::string_view text);
    // Sets how much AppendText keeps, for tests. Otherwise it keeps 500,000 lines, or fewer if they
    // hold more than 50 million UTF-16 units, so that the program stays below 500 MB.
    void SetLimits(int lines, int characters);

    // Brings the line to the top of the view. A number beyond the end brings the end into view.
    void ScrollPosition(std::int64_t line);

    // While busy, a thin strip moves at the upper edge.
    bool Busy() const;
    void Busy(bool busy);

    std::function<void(TextArea&)> TextChange;

  private:
    TextPane& Pane() const;
};
