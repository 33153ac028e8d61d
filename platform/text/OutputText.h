#pragma once

#include <string>
#include <string_view>

// Turns the bytes of an output, which arrive in any pieces, into text that only grows. No printed
// text is lost.
//
// - The only line end is LF. CR LF becomes LF. So does a CR alone, unless its line is still empty:
//   a tool that rewrites its progress by CR gets a line for each step, none of them blank.
// - Control sequences for a terminal (ECMA-48, with its C1 controls in UTF-8), BEL and BS are taken
//   out. After one that moves the cursor or deletes the line, and after several BS, text begins a
//   new line, as after CR.
// - Bytes that begin like a sequence but aren't one are shown as they came. A line end ends every
//   sequence, and so does its 2048th byte.
class OutputText {
  public:
    // Takes bytes and returns the text that can be shown now, in whole characters.
    std::string Add(std::string_view bytes);
    // Returns the rest of the text. Call it once, after the last Add.
    std::string End();

  private:
    void Show(std::string_view piece, std::string& text);
    void Return() { mReturned = !mLineIsEmpty; }

    std::string mPart;         // bytes of an incomplete character or control sequence
    bool mLineIsEmpty = true;  // the last line has no text yet
    bool mReturned = false;    // the cursor has left the last line; further text begins a new one
    bool mBackspaced = false;  // a BS came, and no text since
};
