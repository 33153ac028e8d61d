// Text operations of the platform. All text is UTF-8 in std::string; bytes that are no UTF-8 pass
// through unchanged wherever no conversion for display is needed.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

// The one comparison of strings: letters A to Z without regard to case, all else byte for byte.
bool Equal(std::string_view a, std::string_view b);

// Position of the first element equal to `value` at or after `start`, or -1.
std::int64_t IndexOf(std::span<const std::string> array, std::string_view value,
                     std::int64_t start = 0);

// Field `number`, counted from 1, of `text` split at each `separator`. Empty where the text has
// fewer fields.
std::string NthField(std::string_view text, std::string_view separator, std::int64_t number);

// The number that `text` shows; 0 where it shows none.
double Val(std::string_view text);

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

enum class TextEncoding { UTF8, ASCII };

namespace Encodings {
constexpr TextEncoding UTF8 = TextEncoding::UTF8;
constexpr TextEncoding ASCII = TextEncoding::ASCII;
}  // namespace Encodings

// The same bytes, declared to be in `encoding`. Text is taken as UTF-8 throughout, and the
// control that shows it replaces what isn't, so nothing is converted here.
std::string DefineEncoding(std::string bytes, TextEncoding encoding);
