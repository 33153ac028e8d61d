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

enum class TextEncoding { UTF8, ASCII };

namespace Encodings {
constexpr TextEncoding UTF8 = TextEncoding::UTF8;
constexpr TextEncoding ASCII = TextEncoding::ASCII;
}  // namespace Encodings

// The same bytes, declared to be in `encoding`. Text is taken as UTF-8 throughout, and the
// control that shows it replaces what isn't, so nothing is converted here.
std::string DefineEncoding(std::string bytes, TextEncoding encoding);
