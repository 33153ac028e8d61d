#pragma once

#include <string>
#include <string_view>

// The text of an output whose bytes arrive in any pieces, as a page that only grows. Nothing that
// was printed as text is lost.
//
// - The only line end is LF. CR LF becomes one, and so does a CR alone, unless its line is still
//   empty. So a tool that rewrites its progress by CR gets a line for each step, none of them
//   blank.
// - Control sequences for a terminal (ECMA-48, with its C1 controls in UTF-8), BEL and BS are taken
//   out. Where one moves the cursor or deletes the line, text that follows begins a line, as after
//   CR. So does text that follows several BS.
// - What begins like a sequence but isn't one is shown as it came. At a line end every sequence
//   ends, and so it does after 2048 bytes.
class OutputText {
  public:
    // What can be shown now that these bytes have come: whole characters.
    std::string Add(std::string_view bytes);
    // The rest. Nothing comes after it.
    std::string End();

  private:
    void Show(std::string_view piece, std::string& text);
    void Return() { mReturned = !mLineIsEmpty; }

    std::string mPart;         // bytes of an incomplete character or control sequence
    bool mLineIsEmpty = true;  // so far
    bool mReturned = false;    // the cursor left the line; what follows tells whether it ended
    bool mBackspaced = false;  // a BS came, and no text since
};
