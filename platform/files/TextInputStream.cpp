#include "platform/files/TextInputStream.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <optional>
#include <string_view>

#include "platform/application/Exceptions.h"
#include "platform/qt/QtText.h"

namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

std::optional<std::string> WholeFile(const std::string& path) {
    std::error_code error;
    // A read from a pipe would block, and one from a device might never end.
    if (!std::filesystem::is_regular_file(path, error)) return {};
    std::ifstream file(path, std::ios::binary);
    if (!file) return {};
    std::string bytes;
    std::array<char, 64UL * 1024> block;
    while (file && bytes.size() <= TextInputStream::kLargestFile) {
        file.read(block.data(), block.size());
        bytes.append(block.data(), static_cast<std::size_t>(file.gcount()));
    }
    if (file.bad() || bytes.size() > TextInputStream::kLargestFile) return {};
    return bytes;
}

}  // namespace

std::unique_ptr<TextInputStream> TextInputStream::Open(const FolderItemRef& file) {
    if (!file) throw NilObjectException("TextInputStream.Open of nullptr");
    auto bytes = WholeFile(file->NativePath());
    if (!bytes) return nullptr;
    if (bytes->starts_with(kByteOrderMark)) bytes->erase(0, kByteOrderMark.size());
    return std::unique_ptr<TextInputStream>(
        new TextInputStream(IsUtf8(*bytes) ? std::move(*bytes) : FromShiftJis(*bytes)));
}

TextInputStream::TextInputStream(std::string text) : mText(std::move(text)) {}

std::string TextInputStream::ReadLine(std::nullptr_t) {
    const std::size_t end = std::min(mText.find_first_of("\r\n", mNext), mText.size());
    std::string line = mText.substr(mNext, end - mNext);
    const bool isCrLf = mText.compare(end, 2, "\r\n") == 0;
    mNext = std::min(end + (isCrLf ? 2 : 1), mText.size());
    return line;
}
