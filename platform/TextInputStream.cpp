#include "platform/TextInputStream.h"

#include <QStringDecoder>
#include <QUtf8StringView>
#include <algorithm>
#include <filesystem>
#include <string_view>

#include "platform/Exceptions.h"
#include "platform/QtText.h"
#include "platform/Text.h"

namespace {

constexpr std::size_t kBlock = 64UL * 1024;
constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

bool IsUtf8(std::string_view text) {
    return QUtf8StringView(text.data(), static_cast<qsizetype>(text.size())).isValidUtf8();
}

// Leaves the file at its beginning.
bool HoldsUtf8(std::ifstream& file) {
    std::string text;  // what is left of the last block, then a block more
    bool valid = true;
    while (valid && file) {
        const std::size_t left = text.size();
        text.resize(left + kBlock);
        file.read(text.data() + left, kBlock);
        text.resize(left + static_cast<std::size_t>(file.gcount()));
        const std::size_t whole = file ? CompleteLength(text) : text.size();
        valid = IsUtf8(std::string_view(text).substr(0, whole));
        text.erase(0, whole);
    }
    file.clear();
    file.seekg(0);
    return valid;
}

}  // namespace

struct TextInputStream::Decoder {
    QStringDecoder shiftJis{"Shift_JIS"};
};

std::unique_ptr<TextInputStream> TextInputStream::Open(const FolderItemRef& file) {
    if (!file) throw NilObjectException("TextInputStream.Open of nil");
    std::error_code error;
    // A pipe would block, a device might never end.
    if (!std::filesystem::is_regular_file(file->NativePath(), error)) return nullptr;
    std::ifstream stream(file->NativePath(), std::ios::binary);
    if (!stream) return nullptr;
    return std::unique_ptr<TextInputStream>(new TextInputStream(std::move(stream)));
}

TextInputStream::TextInputStream(std::ifstream file) : mFile(std::move(file)) {
    if (!HoldsUtf8(mFile)) mDecoder = std::make_unique<Decoder>();
    // A toolkit that was built without this encoding leaves the bytes as they are.
    if (mDecoder && !mDecoder->shiftJis.isValid()) mDecoder.reset();
    Fill();
    if (mBuffer.starts_with(kByteOrderMark)) mNext = kByteOrderMark.size();
    if (Eof()) Fill();
}

TextInputStream::~TextInputStream() = default;

bool TextInputStream::Fill() {
    mBuffer.resize(kBlock);
    mFile.read(mBuffer.data(), kBlock);
    mBuffer.resize(static_cast<std::size_t>(mFile.gcount()));
    mNext = 0;
    return !mBuffer.empty();
}

std::string TextInputStream::ReadLine(std::nullptr_t) {
    std::string line;
    for (bool ended = false; !ended && !Eof();) {
        const std::size_t end = std::min(mBuffer.find_first_of("\r\n", mNext), mBuffer.size());
        line.append(mBuffer, mNext, std::min(end - mNext, kLongestLine - line.size()));
        ended = end < mBuffer.size();
        const bool carriageReturn = ended && mBuffer[end] == '\r';
        mNext = ended ? end + 1 : end;
        if (Eof()) Fill();
        if (carriageReturn && !Eof() && mBuffer[mNext] == '\n') ++mNext;
        if (Eof()) Fill();
    }
    if (!mDecoder) {
        // The limit may have cut a character.
        if (line.size() == kLongestLine) line.resize(CompleteLength(line));
        return line;
    }
    mDecoder->shiftJis.resetState();
    const QString text =
        mDecoder->shiftJis(QByteArrayView(line.data(), static_cast<qsizetype>(line.size())));
    return FromQt(text);
}
