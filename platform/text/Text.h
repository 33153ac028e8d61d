// Operations on text, which is UTF-8 in std::string. Bytes that are no UTF-8 pass through
// unchanged.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

// Compares as the whole program does: A to Z without regard to case, all other bytes exactly.
bool Equal(std::string_view a, std::string_view b);

// Position of the first element equal to `value` at or after `start`, or -1.
std::int64_t IndexOf(std::span<const std::string> array, std::string_view value,
                     std::int64_t start = 0);

// Splits `text` at each `separator` and returns field `number`, counted from 1. Returns an empty
// text if there are fewer fields.
std::string NthField(std::string_view text, std::string_view separator, std::int64_t number);

// The number at the start of `text`, or 0 if there is none.
double Val(std::string_view text);

enum class TextEncoding { UTF8, ASCII };

namespace Encodings {
constexpr TextEncoding UTF8 = TextEncoding::UTF8;
constexpr TextEncoding ASCII = TextEncoding::ASCII;
}  // namespace Encodings

// Returns the same bytes. All text counts as UTF-8, and a control replaces other bytes when it
// shows them, so nothing has to be converted here.
std::string DefineEncoding(std::string bytes, TextEncoding encoding);
