// Output of any bytes becomes the same text in whatever pieces it arrives, and loses nothing.
#include <algorithm>

#include "Fuzzing.h"
#include "platform/text/OutputText.h"

namespace {

std::string WithoutLineEnds(std::string text) {
    std::erase_if(text, [](char c) { return c == '\r' || c == '\n'; });
    return text;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::size_t prefix = size == 0 ? 0 : std::min<std::size_t>(data[0], size - 1);
    FuzzedDataProvider lengths(data, prefix);
    const std::string bytes(reinterpret_cast<const char*>(data) + prefix, size - prefix);

    OutputText whole;
    std::string expected = whole.Add(bytes);
    Expect(WithoutLineEnds(bytes).size() - WithoutLineEnds(expected).size() <= 3,
           "what is held back is a part of one character");
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
    Expect(WithoutLineEnds(text) == WithoutLineEnds(bytes), "nothing is lost");
    Expect(text.find('\r') == text.npos, "LF is the only line end");
    return 0;
}
