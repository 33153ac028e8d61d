#include "platform/text/Text.h"

#include <algorithm>
#include <locale>
#include <sstream>

namespace {

char Folded(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

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

std::string DefineEncoding(std::string bytes, TextEncoding) { return bytes; }
