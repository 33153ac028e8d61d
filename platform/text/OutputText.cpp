#include "platform/text/OutputText.h"

#include <algorithm>
#include <array>
#include <optional>
#include <utility>

namespace {

// Bytes of the longest control sequence. One that never ends holds back no more than this. Links
// and titles are shorter.
constexpr std::size_t kLongest = 2048;

constexpr char kEscape = '\x1B';
constexpr char kC1Lead = '\xC2';  // C1 controls are U+0080 to U+009F

// The length of the UTF-8 character that begins with `lead`; 1 if none does.
std::size_t CharacterLength(unsigned char lead) {
    if (lead >= 0xF0 && lead <= 0xF4) return 4;
    if (lead >= 0xE0 && lead <= 0xEF) return 3;
    if (lead >= 0xC2 && lead <= 0xDF) return 2;
    return 1;
}

// The number of bytes at the end that are an incomplete character.
std::size_t PartLength(std::string_view bytes) {
    for (std::size_t back = 1; back <= std::min<std::size_t>(bytes.size(), 3); ++back) {
        const auto byte = static_cast<unsigned char>(bytes[bytes.size() - back]);
        if (CharacterLength(byte) > back) return back;
        if ((byte & 0xC0U) != 0x80U) break;  // not a continuation: no character reaches the end
    }
    return 0;
}

// Finds bytes that may begin a control. It searches the text once for each kind of them, by memchr,
// so that text without controls takes little time.
class Controls {
  public:
    explicit Controls(std::string_view bytes) : mBytes(bytes) {}

    // The place of the first such byte from `at` on, or the end. `at` must not decrease.
    std::size_t Next(std::size_t at) {
        std::size_t next = mBytes.size();
        for (Kind& kind : mKinds) {
            if (!kind.place || *kind.place < at)
                kind.place = std::min(mBytes.find(kind.byte, at), mBytes.size());
            next = std::min(next, *kind.place);
        }
        return next;
    }

  private:
    struct Kind {
        char byte;
        std::optional<std::size_t> place;  // of the next such byte, once searched for
    };

    std::string_view mBytes;
    std::array<Kind, 5> mKinds{{{'\r', {}}, {'\a', {}}, {'\b', {}}, {kEscape, {}}, {kC1Lead, {}}}};
};

enum class Effect { Text, None, Backspace, Return, Incomplete };

struct Control {
    std::size_t length;
    Effect effect;
};

constexpr Control kNoControl{1, Effect::Text};
constexpr Control kIncomplete{0, Effect::Incomplete};

bool IsBetween(char byte, char first, char last) { return byte >= first && byte <= last; }

bool IsC1(std::string_view bytes) {
    return bytes.size() > 1 && bytes[0] == kC1Lead && IsBetween(bytes[1], '\x80', '\x9F');
}

// CSI: parameters, intermediate bytes, a final byte.
Control ReadCsi(std::string_view bytes) {
    std::size_t at = 2;
    while (at < bytes.size() && IsBetween(bytes[at], '0', '?')) ++at;
    while (at < bytes.size() && IsBetween(bytes[at], ' ', '/')) ++at;
    if (at == bytes.size()) return kIncomplete;
    const char function = bytes[at];
    if (!IsBetween(function, '@', '~')) return kNoControl;
    // J and K delete; with the parameter 2 or 3 also the text before the cursor.
    const bool deletes = (function == 'J' || function == 'K') && IsBetween(bytes[2], '2', '3');
    const bool moves = std::string_view("ABCDEFGHdfu").find(function) != std::string_view::npos;
    return {at + 1, deletes || moves ? Effect::Return : Effect::None};
}

// OSC and similar strings end with BEL or ST. A line end or another sequence before that means that
// the string has no end.
Control ReadString(std::string_view bytes) {
    for (std::size_t at = 2; at < bytes.size(); ++at) {
        const std::string_view two = bytes.substr(at, 2);
        if (two[0] == '\a') return {at + 1, Effect::None};
        if (two == "\x1B\\" || two == "\xC2\x9C") return {at + 2, Effect::None};
        if (two == "\x1B") break;  // the second byte of ST may follow
        if (two[0] == '\r' || two[0] == '\n' || two[0] == kEscape || IsC1(two)) return kNoControl;
    }
    return kIncomplete;
}

// A sequence that begins with ESC and `kind`, or with the C1 control that stands for these two.
Control ReadEscape(std::string_view bytes, char kind) {
    if (kind == '[') return ReadCsi(bytes);
    if (std::string_view("]PX^_").find(kind) != std::string_view::npos) return ReadString(bytes);
    // Moves to another line, to the saved place, or a reset.
    const bool moves = std::string_view("DEM8c").find(kind) != std::string_view::npos;
    return {2, moves ? Effect::Return : Effect::None};
}

// The control at the start of the bytes, if there is one.
Control Read(std::string_view bytes) {
    if (bytes[0] == '\r') return {1, Effect::Return};
    if (bytes[0] == '\a') return {1, Effect::None};
    if (bytes[0] == '\b') return {1, Effect::Backspace};
    if (IsC1(bytes)) return ReadEscape(bytes, static_cast<char>(bytes[1] - 0x40));
    if (bytes[0] != kEscape) return kNoControl;
    if (bytes.size() == 1) return kIncomplete;
    if (IsBetween(bytes[1], '0', '~')) return ReadEscape(bytes, bytes[1]);
    if (!IsBetween(bytes[1], ' ', '/')) return kNoControl;
    if (bytes.size() == 2) return kIncomplete;
    return IsBetween(bytes[2], '0', '~') ? Control{3, Effect::None} : kNoControl;
}

}  // namespace

void OutputText::Show(std::string_view piece, std::string& text) {
    if (piece.empty()) return;
    if (mReturned && piece[0] != '\n') text += '\n';
    text += piece;
    mReturned = false;
    mBackspaced = false;
    mLineIsEmpty = piece.ends_with('\n');
}

std::string OutputText::Add(std::string_view bytes) {
    const std::string joined = std::exchange(mPart, {}).append(bytes);
    const std::string_view whole(joined.data(), joined.size() - PartLength(joined));
    Controls controls(whole);
    std::string text;
    std::size_t at = 0;
    while (at < whole.size()) {
        const std::size_t next = controls.Next(at);
        Show(whole.substr(at, next - at), text);
        at = next;
        if (at == whole.size()) break;

        const std::string_view rest = whole.substr(at);
        Control control = Read(rest.substr(0, kLongest));
        if (control.effect == Effect::Incomplete) {
            if (rest.size() < kLongest) break;
            control = kNoControl;
        }
        if (control.effect == Effect::Text) Show(rest.substr(0, control.length), text);
        if (control.effect == Effect::Return) Return();
        if (control.effect == Effect::Backspace && std::exchange(mBackspaced, true)) Return();
        at += control.length;
    }
    mPart = joined.substr(at);
    return text;
}

std::string OutputText::End() {
    std::string text;
    while (!mPart.empty()) {
        const std::string part = std::exchange(mPart, {});
        Show(part.substr(0, 1), text);
        text += Add(std::string_view(part).substr(1));
    }
    if (mReturned) text += '\n';
    return text;
}
