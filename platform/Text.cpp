#include "platform/Text.h"

#include <algorithm>
#include <locale>
#include <sstream>

namespace {

char Folded(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

// Bytes of the UTF-8 character that `lead` begins; 1 where it begins none.
std::size_t CharacterLength(unsigned char lead) {
    if (lead >= 0xF0 && lead <= 0xF4) return 4;
    if (lead >= 0xE0 && lead <= 0xEF) return 3;
    if (lead >= 0xC2 && lead <= 0xDF) return 2;
    return 1;
}

}  // namespace

bool Equal(std::string_view a, std::string_view b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](char x, char y) { return Folded(x) == Folded(y); });
}

std::int64_t IndexOf(std::span<const std::string> array, std::string_view value,
                     std::int64_t start) {
    for (auto i = static_cast<std::size_t>(std::max<std::int64_t>(start, 0)); i < array.size(); ++i)
        if (Equal(array[i], value)) return static_cast<std::int64_t>(i);
    return -1;
}

std::string NthField(std::string_view text, std::string_view separator, std::int64_t number) {
    if (number < 1) return {};
    if (separator.empty()) return number == 1 ? std::string(text) : std::string();
    for (; number > 1; --number) {
        const auto at = text.find(separator);
        if (at == text.npos) return {};
        text.remove_prefix(at + separator.size());
    }
    return std::string(text.substr(0, text.find(separator)));
}

double Val(std::string_view text) {
    std::istringstream stream{std::string(text)};
    stream.imbue(std::locale::classic());  // the same number whatever the user's language
    double number = 0;
    stream >> number;
    return stream ? number : 0;
}

std::size_t CompleteLength(std::string_view bytes) {
    if (bytes.ends_with('\r')) return bytes.size() - 1;
    const std::size_t tail = std::min<std::size_t>(bytes.size(), 3);
    for (std::size_t back = 1; back <= tail; ++back) {
        const auto byte = static_cast<unsigned char>(bytes[bytes.size() - back]);
        if (CharacterLength(byte) > back) return bytes.size() - back;
        if ((byte & 0xC0U) != 0x80U) break;  // not a continuation: no character reaches the end
    }
    return bytes.size();
}

std::string DefineEncoding(std::string bytes, TextEncoding) { return bytes; }
