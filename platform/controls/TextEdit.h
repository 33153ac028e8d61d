#pragma once

#include <functional>

#include "platform/controls/Control.h"

// Characters that fit into one line of editable text. Qt takes time by the length of a line.
inline constexpr int kLongestLine = 64 * 1024;

// What the two text controls share. The whole text is read and written as Text; writing it raises
// TextChange each time, as an edit by the user does.
class TextEdit : public RectControl {
  public:
    virtual std::string Text() const = 0;
    virtual void Text(std::string_view text) = 0;

  protected:
    using RectControl::RectControl;
};

// Several lines, wrapped, with a vertical scroll bar. Tab leaves it.
class TextArea : public TextEdit {
  public:
    TextArea(Window& owner, std::string name);

    // A text that was set is read back byte for byte until the user edits it, whatever of it the
    // control can show; an edited text is what the control shows.
    std::string Text() const override;
    void Text(std::string_view text) override;
    void ReadOnly(bool readOnly);

    // Adds text at the end, with no separator. `text` holds whole characters, with LF as line end.
    // Of very much text the oldest is dropped, and a line at the top says how much that is.
    void AppendText(std::string_view text);
    // How much AppendText keeps at least. Unless a test sets it: a million lines of together 50
    // million UTF-16 units, which takes less than 500 MB.
    void Keep(int lines, int characters);

    // Brings the line to the top of the view, or the end into view where there is no such line.
    void ScrollPosition(std::int64_t line);

    // While busy, a thin strip moves at the upper edge.
    bool Busy() const;
    void Busy(bool busy);

    std::function<void(TextArea&)> TextChange;

  private:
    struct State;  // Qt's widget with what it keeps
    TextArea(std::string name, State* state);

    State* mState;
};

// One line, cut off where it is longer than kLongestLine.
class TextField : public TextEdit {
  public:
    TextField(Window& owner, std::string name);

    std::string Text() const override;
    void Text(std::string_view text) override;

    std::function<void(TextField&)> TextChange;
};
