// Output of any bytes shows as the same text in whatever pieces it arrives.
#include <QString>

#include "Fuzzing.h"
#include "platform/QtText.h"
#include "platform/Text.h"

namespace {

// As the pane shows it, which takes CR and LF for a line end each and together for one.
QString Shown(std::string_view bytes) {
    return ToQt(bytes).replace("\r\n", "\n").replace('\r', '\n');
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::size_t prefix = size == 0 ? 0 : std::min<std::size_t>(data[0], size - 1);
    FuzzedDataProvider lengths(data, prefix);
    const std::string_view bytes(reinterpret_cast<const char*>(data) + prefix, size - prefix);

    QString pieces;
    std::string waiting;
    for (std::size_t from = 0; from < bytes.size();) {
        const auto length = lengths.ConsumeIntegralInRange<std::size_t>(1, bytes.size() - from);
        waiting += bytes.substr(from, length);
        from += length;
        const std::size_t whole = CompleteLength(waiting);
        Expect(waiting.size() - whole <= 3, "what is held back is a part of one character");
        pieces += Shown(std::string_view(waiting).substr(0, whole));
        waiting.erase(0, whole);
    }
    pieces += Shown(waiting);  // at the end of the run
    Expect(pieces == Shown(bytes), "the pieces make no difference");
    return 0;
}
