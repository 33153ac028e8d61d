#pragma once

#include <string>
#include <string_view>

// The text of an output whose bytes arrive in any pieces. Its only line end is LF: CR LF becomes
// one, and so does a CR alone, unless its line is still empty. So a tool that rewrites its progress
// by CR gets a line for each step, none of them blank, and nothing that it printed is lost.
class OutputText {
  public:
    // What can be shown now that these bytes have come: whole characters.
    std::string Add(std::string_view bytes);
    // The rest. Nothing comes after it.
    std::string End();

  private:
    std::string mPart;         // bytes of an incomplete character
    bool mLineIsEmpty = true;  // so far
    bool mReturned = false;    // a CR came; what follows tells whether it ended the line
};
