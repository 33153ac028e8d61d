#include "platform/text/OutputText.h"

#include <algorithm>
#include <utility>

namespace {

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
