#include "platform/text/Text.h"

#include <algorithm>
#include <locale>
#include <sstream>
#include <utility>

namespace {

char Folded(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

// Bytes of the UTF-8 character that `lead` begins; 1 where it begins none.
std::size_t CharacterLength(unsigned char lead) {
    if (lead >= 0xF0 && lead <= 0xF4) return 4;
    if (lead >= 0xE0 && lead <= 0xEF) return 3;
    if (lead >= 0xC2 && lead <= 0xDF) return 2;
    return 1;
}

// Bytes at the end that begin a character whose rest is missing.
std::size_t PartLength(std::string_view bytes) {
    for (std::size_t back = 1; back <= std::min<std::size_t>(bytes.size(), 3); ++back) {
        const auto byte = static_cast<unsigned char>(bytes[bytes.size() - back]);
        if (CharacterLength(byte) > back) return back;
        if ((byte & 0xC0U) != 0x80U) break;  // not a continuation: no character reaches the end
    }
    return 0;
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

std::string OutputText::Add(std::string_view bytes) {
    const std::string joined = std::exchange(mPart, {}).append(bytes);
    std::string_view rest = joined;
    rest.remove_suffix(PartLength(joined));
    mPart = joined.substr(rest.size());

    std::string text;
    while (!rest.empty()) {
        const std::size_t length = std::min(rest.find('\r'), rest.size());
        if (length > 0) {
            if (mReturned && rest[0] != '\n') text += '\n';
            text += rest.substr(0, length);
            mReturned = false;
            mLineIsEmpty = text.ends_with('\n');
        }
        if (length < rest.size()) mReturned = !mLineIsEmpty;
        rest.remove_prefix(std::min(length + 1, rest.size()));
    }
    return text;
}

std::string OutputText::End() {
    std::string text = std::exchange(mPart, {});
    if (mReturned) text.insert(text.begin(), '\n');
    return text;
}

std::string DefineEncoding(std::string bytes, TextEncoding) { return bytes; }
