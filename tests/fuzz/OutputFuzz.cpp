// Turns output of any bytes into text. The text is the same in whatever pieces the output arrives,
// and lacks nothing but control sequences.
#include <algorithm>
#include <regex>

#include "Fuzzing.h"
#include "platform/text/OutputText.h"

namespace {

// Makes a character of each byte. The ranges of a regular expression need non-negative characters.
std::wstring Wide(const std::string& bytes) {
    const auto* first = reinterpret_cast<const unsigned char*>(bytes.data());
    return {first, first + bytes.size()};
}

// Without control sequences and line ends.
std::wstring Bare(const std::wstring& bytes) {
    static const std::wregex controls(
        L"(\x1B\\[|\xC2\x9B)[0-?]*[ -/]*[@-~]|"
        L"(\x1B[\\]PX^_]|\xC2[\x90\x98\x9D-\x9F])"
        L"([^\x07\n\r\x1B\xC2]|\xC2(?![\x80-\x9F]))*(\x07|\x1B\\\\|\xC2\x9C)|"
        L"\x1B[ -/][0-~]|\x1B[0-OQ-WYZ\\\\`-~]|\xC2[\x80-\x8F\x91-\x97\x99\x9A\x9C]|[\x07\x08\r\n]",
        std::regex::optimize);
    return std::regex_replace(bytes, controls, L"");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::size_t prefix = size == 0 ? 0 : std::min<std::size_t>(data[0], size - 1);
    FuzzedDataProvider lengths(data, prefix);
    const std::string bytes(reinterpret_cast<const char*>(data) + prefix, size - prefix);

    OutputText whole;
    std::string expected = whole.Add(bytes);
    expected += whole.End();

    OutputText pieces;
    std::string text;
    for (std::size_t from = 0; from < bytes.size();) {
        const auto length = lengths.ConsumeIntegralInRange<std::size_t>(1, bytes.size() - from);
        text += pieces.Add(bytes.substr(from, length));
        from += length;
    }
    text += pieces.End();
    Expect(text == expected, "the pieces make no difference");
    Expect(text.find('\r') == text.npos, "LF is the only line end");

    std::erase(text, '\n');
    Expect(Wide(text) == Bare(Wide(bytes)), "nothing but control sequences is lost");

    OutputText line;
    line.Add(bytes + '\n');
    Expect(line.End().empty(), "a line end leaves nothing held back");
    return 0;
}
